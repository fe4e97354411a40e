#include <utility>

#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/codecs/png/png_encoder.h>
#include <rasterkit/graphics/convert_graphic.h>
#include <rasterkit/graphics/png_image.h>
#include <rasterkit/graphics/system_color.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

bool DefinesAlpha(const Raster& rows) {
  return rows.Format() == pf32bit && rows.alphaFormat == afDefined;
}

}  // namespace

TPngImage::TPngImage() = default;
TPngImage::~TPngImage() = default;

int TPngImage::Width() const {
  return bitmap_.Width();
}
int TPngImage::Height() const {
  return bitmap_.Height();
}

void TPngImage::LoadFromStream(TStream& stream) {
  bitmap_ = TBitmap(DecodePng(stream.ReadToEnd()));
  AssignTransparency(bitmap_);
  modified_ = false;
}

void TPngImage::SaveToStream(TStream& stream) {
  if (Empty()) throw FormatError("PNG: there is no picture to save");
  Raster& rows = bitmap_.raster_;
  rows.transparentColor.reset();
  if (Transparent() && !DefinesAlpha(rows)) {
    rows.transparentColor = ResolveColor(TransparentColor());
  }
  EncodePng(rows, stream);
}

void TPngImage::AssignToBitmap(TBitmap& target) const {
  bitmap_.AssignToBitmap(target);
  target.raster_.transparentColor.reset();
  target.AssignTransparency(*this);
}

void TPngImage::AssignFrom(const TGraphic& source) {
  bitmap_ = detail::ConvertGraphic(source, [](const Raster& rows) {
    const bool stays = IsIndexed(rows.Format()) || DefinesAlpha(rows);
    return stays ? rows.Format() : pf24bit;
  });
}

void TPngImage::Clear() {
  bitmap_ = TBitmap();
}

}  // namespace rasterkit
