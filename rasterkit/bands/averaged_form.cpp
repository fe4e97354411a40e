#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include <rasterkit/bands/averaged_form.h>
#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/bands/colors/wider_rows.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/halftone/halftone_axis.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

bool IsOneBandGray(const PixelLayout& layout) {
  return layout.bands == 1 &&
         (layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero);
}

/// Both entries of a 1-bit palette are grays.
bool IsGrayPair(const PixelLayout& layout) {
  if (layout.bits != 1) return false;
  if (layout.model != ColorModel::palette) return IsOneBandGray(layout);
  const auto isGray = [&](int index) {
    const tagPALETTEENTRY entry = layout.palette.Entry(index);
    return entry.peRed == entry.peGreen && entry.peRed == entry.peBlue;
  };
  return isGray(0) && isGray(1);
}

bool HasIndexes(const PixelLayout& layout) {
  return layout.bands == 1 && layout.bits <= 8;
}

bool IsWide(NumberType type) {
  return type == NumberType::uint64 || type == NumberType::int64;
}

AveragedForm FormOfColors(const PixelLayout& layout) {
  const bool isGray = IsOneBandGray(layout) || IsGrayPair(layout);
  if (layout.alpha == AlphaKind::none) return isGray ? AveragedForm::gray : AveragedForm::color;
  return AveragedForm::colorAndAlpha;
}

AveragedForm FormOfSamples(const PixelLayout& layout, Filter filter) {
  if (!IsWide(layout.type)) return AveragedForm::samples;
  if (filter == Filter::automatic) return AveragedForm::none;
  throw UnsupportedError("64-bit numbers are not averaged; only the nearest pixels can be taken");
}

}  // namespace

AveragedForm FormForResize(const PixelLayout& layout, bool isRaster, Sides from, Sides to,
                           Filter filter) {
  const int longest = std::max({from.width, from.height, to.width, to.height});
  if (longest > kernels::kLongestHalftoneSide) return AveragedForm::none;
  if (filter == Filter::nearest || from == to) return AveragedForm::none;
  if (!isRaster) return FormOfSamples(layout, filter);
  if (filter == Filter::automatic && HasIndexes(layout)) {
    const bool shrinks = to.width < from.width || to.height < from.height;
    const bool isGray8 = IsOneBandGray(layout) && layout.bits == 8;
    if (layout.alpha != AlphaKind::none) return AveragedForm::none;
    if (!isGray8 && !(IsGrayPair(layout) && shrinks)) return AveragedForm::none;
  }
  return FormOfColors(layout);
}

AveragedForm FormForTurn(const PixelLayout& layout, bool isRaster, Filter filter) {
  if (filter == Filter::nearest || filter == Filter::automatic) return AveragedForm::none;
  return isRaster ? FormOfColors(layout) : FormOfSamples(layout, filter);
}

PixelLayout LayoutOfForm(const PixelLayout& layout, AveragedForm form) {
  if (form == AveragedForm::none || form == AveragedForm::samples) return layout;
  PixelLayout result;
  result.profile = layout.profile;
  if (form == AveragedForm::gray) {
    result.model = ColorModel::gray;
    result.bands = 1;
  } else if (form == AveragedForm::colorAndAlpha) {
    result.bands = 4;
    result.alpha = AlphaKind::straight;
  }
  return result;
}

namespace {

Raster GrayOf(const Raster& raster) {
  std::array<uint8_t, 256> grays{};
  for (int i = 0; i < 256; ++i) grays[static_cast<size_t>(i)] = raster.palette.Entry(i).peRed;
  Raster target = raster.Format() == pf8bit ? raster.Clone() : Widened(raster, pf8bit);
  target.palette = GrayPalette(256);
  for (int y = 0; y < target.Height(); ++y) {
    uint8_t* row = target.Row(y);
    for (int x = 0; x < target.Width(); ++x) row[x] = grays[row[x]];
  }
  return target;
}

}  // namespace

void BringToForm(Raster& raster, AveragedForm form) {
  switch (form) {
    case AveragedForm::gray:
      if (raster.Format() != pf8bit || !IsGrayRamp(raster.palette)) raster = GrayOf(raster);
      return;
    case AveragedForm::color:
    case AveragedForm::colorAndAlpha: {
      TBitmap bitmap(std::move(raster));
      KeyToAlpha(bitmap);
      if (!HasAlpha(bitmap)) bitmap.SetPixelFormat(pf24bit);
      raster = bitmap.TakeContent();
      return;
    }
    default:
      return;
  }
}

}  // namespace rasterkit::detail
