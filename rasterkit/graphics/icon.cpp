#include <algorithm>
#include <string>
#include <utility>

#include <rasterkit/codecs/ico/ico_decoder.h>
#include <rasterkit/codecs/ico/ico_encoder.h>
#include <rasterkit/codecs/rows/alpha_rows.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/icon.h>
#include <rasterkit/graphics/system_color.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

void RequireOneSize(const TBitmap& color, const TBitmap& mask) {
  if (!color.Empty() && color.Width() == mask.Width() && color.Height() == mask.Height()) return;
  const auto sizeOf = [](const TBitmap& bitmap) {
    return std::to_string(bitmap.Width()) + " x " + std::to_string(bitmap.Height());
  };
  throw RangeError("an icon cannot be made of colors of " + sizeOf(color) +
                   " pixels and a mask of " + sizeOf(mask));
}

bool HasAnyAlpha(const Raster& raster) {
  for (int y = 0; y < raster.Height(); ++y) {
    if (detail::HasAnyAlpha(raster.Row(y), static_cast<size_t>(raster.Width()))) return true;
  }
  return false;
}

/// Sets alpha to 0 where `isTransparent(x, y)` is true, else to 255.
template <class Predicate>
void SetAlpha(Raster& raster, Predicate isTransparent) {
  for (int y = 0; y < raster.Height(); ++y) {
    for (int x = 0; x < raster.Width(); ++x) {
      raster.Row(y)[4 * static_cast<size_t>(x) + 3] = isTransparent(x, y) ? 0 : 255;
    }
  }
}

bool BitOf(const Raster& mask, int x, int y) {
  return (mask.Row(y)[x / 8] >> (7 - x % 8) & 1) != 0;
}

}  // namespace

TIcon::TIcon() = default;
TIcon::~TIcon() = default;
TIcon::TIcon(TIcon&&) noexcept = default;
TIcon& TIcon::operator=(TIcon&&) noexcept = default;

std::unique_ptr<TIcon> TIcon::FromColorAndMask(const TBitmap& color, const TBitmap& mask) {
  auto icon = std::make_unique<TIcon>();
  icon->SetColorAndMask(color, mask);
  return icon;
}

void TIcon::SetColorAndMask(const TBitmap& color, const TBitmap& mask) {
  RequireOneSize(color, mask);
  Raster raster = ConvertRaster(color.Content(), pf32bit);
  if (color.Content().Format() != pf32bit || !HasAnyAlpha(raster)) {
    const Raster bits = ConvertRaster(mask.Content(), pf1bit);
    SetAlpha(raster, [&](int x, int y) { return BitOf(bits, x, y); });
  }
  Take(std::move(raster));
  modified_ = true;
}

void TIcon::Take(Raster raster) {
  raster.palette = {};
  raster.alphaFormat = afDefined;
  raster.transparentColor = clWhite;
  color_ = TBitmap(std::move(raster));
  AssignTransparency(color_);
}

std::unique_ptr<TBitmap> TIcon::MaskBitmap() const {
  const Raster& colors = color_.Content();
  Raster mask(pf1bit, Width(), Height());
  for (int y = 0; y < Height(); ++y) {
    uint8_t* row = mask.Row(y);
    std::fill_n(row, mask.Stride(), uint8_t{0});
    for (int x = 0; x < Width(); ++x) {
      if (colors.Row(y)[4 * static_cast<size_t>(x) + 3] == 0) {
        row[x / 8] = static_cast<uint8_t>(row[x / 8] | 0x80 >> (x % 8));
      }
    }
  }
  return std::make_unique<TBitmap>(std::move(mask));
}

void TIcon::LoadFromStream(TStream& stream) {
  Take(DecodeIco(stream.ReadToEnd()));
  modified_ = false;
}

void TIcon::SaveToStream(TStream& stream) {
  EncodeIco(color_.Content(), stream);
}

void TIcon::AssignToBitmap(TBitmap& target) const {
  color_.AssignToBitmap(target);
  target.AssignTransparency(*this);
}

void TIcon::AssignFrom(const TGraphic& source) {
  TBitmap shown;
  source.AssignToBitmap(shown);
  const bool hasAlpha = shown.PixelFormat() == pf32bit && shown.AlphaFormat() == afDefined;
  Raster raster = ConvertRaster(shown.Content(), pf32bit);
  if (!hasAlpha) {
    const bool hasKey = shown.Transparent();
    const TColor key = hasKey ? ResolveColor(shown.TransparentColor()) : clBlack;
    SetAlpha(raster, [&](int x, int y) { return hasKey && raster.PixelColor(x, y) == key; });
  }
  Take(std::move(raster));
}

void TIcon::Clear() {
  color_ = TBitmap();
}

}  // namespace rasterkit
