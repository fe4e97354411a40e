#include <optional>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/graphic.h>
#include <rasterkit/graphics/name_errors.h>
#include <rasterkit/graphics/system_color.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/atomic_file.h>

namespace rasterkit {

void TGraphic::Assign(const TGraphic* source) {
  if (source == this) return;
  if (source == nullptr) {
    Clear();
  } else {
    AssignFrom(*source);
    AssignTransparency(*source);
  }
  modified_ = true;
}

void TGraphic::LoadFromFile(const std::string& fileName) {
  detail::NameErrors(fileName, [&] {
    TFileStream stream(fileName);
    LoadFromStream(stream);
  });
}

void TGraphic::SaveToFile(const std::string& fileName) {
  detail::NameErrors(fileName, [&] {
    AtomicFile file(fileName);
    SaveToStream(file);
    file.Commit();
  });
  modified_ = false;
}

void TGraphic::DrawTo(TCanvas& canvas, const TRect& place) const {
  const Raster* rows = Rows();
  if (rows == nullptr) {
    TBitmap shown;
    shown.Assign(this);
    shown.DrawTo(canvas, place);
    return;
  }
  std::optional<TColor> key;
  if (Transparent()) key = ResolveColor(TransparentColor());
  canvas.DrawRaster(place, *rows, key);
}

TColor TGraphic::TransparentColor() const {
  const Raster* rows = transparency_.mode == tmAuto ? Rows() : nullptr;
  if (rows == nullptr) return transparency_.color;
  return Empty() ? clBlack : rows->PixelColor(0, rows->Height() - 1);
}

void TGraphic::SetTransparentColor(TColor color) {
  transparency_.color = color;
  transparency_.mode = tmFixed;
}

void TGraphic::AssignTransparency(const TGraphic& source) {
  transparency_ = source.transparency_;
  // A class may override this one.
  transparency_.isOn = source.Transparent();
}

}  // namespace rasterkit
