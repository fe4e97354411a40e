#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/shown_numbers.h>
#include <rasterkit/codecs/visible_numbers.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

bool IsGray(const PixelLayout& layout) {
  return layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
}

void NoteLosses(const PixelLayout& layout, Changes& changes) {
  constexpr const char* kWhy = "the pixels are shown with 8 bits";
  if (layout.bits > 8) {
    changes.Lose(LossKind::bits, fmt::format("{} to 8 bits per sample", layout.bits), kWhy);
  } else if (layout.type == NumberType::int8) {
    changes.Lose(LossKind::bits, "the numbers with a sign", kWhy);
  }
  if (layout.model == ColorModel::cmyk) {
    changes.Lose(LossKind::colors, "CMYK to RGB", "the pixels are shown in RGB");
  } else if (layout.model == ColorModel::lab || layout.model == ColorModel::iccLab) {
    changes.Lose(LossKind::colors, "L*a*b* to RGB", "the pixels are shown in RGB");
  }
  if (layout.extraBands > 0) {
    changes.Lose(LossKind::colors, fmt::format("{} of {} bands", layout.extraBands, layout.bands),
                 "they are no colors");
  }
}

/// The profile of the samples if it describes the raster too.
ColorProfile ProfileFor(const Raster& raster, const PixelLayout& layout) {
  const bool isGray = raster.Format() == pf8bit;
  const bool isSame =
      isGray || layout.model == ColorModel::rgb || layout.model == ColorModel::palette;
  const auto space = isGray ? detail::ProfileSpace::gray : detail::ProfileSpace::rgb;
  return isSame && detail::ProfileFits(layout.profile, space) ? layout.profile : nullptr;
}

/// True if the stretch shows colors otherwise than by their whole range.
bool IsStretchedColor(const PixelLayout& layout, const NumberStretch& stretch) {
  const bool isLight = IsGray(layout) || layout.model == ColorModel::rgb;
  return isLight && detail::IsStretched(layout) && stretch.kind != NumberStretch::Kind::automatic &&
         (stretch.kind != NumberStretch::Kind::full || detail::HasNegatives(layout.type));
}

Raster Shown(const Samples& samples, const std::string& noData, const NumberStretch& stretch,
             Changes& changes) {
  const PixelLayout& layout = samples.Layout();
  if (detail::IsSingleBand(layout)) {
    return detail::VisibleNumbers(samples, noData, stretch, changes);
  }
  if (IsStretchedColor(layout, stretch)) {
    return detail::StretchedColors(samples, noData, stretch, changes);
  }
  return detail::VisibleColors(samples, changes);
}

}  // namespace

NumberStretch SettledStretch(const Samples& samples, const std::string& noData,
                             const NumberStretch& stretch) {
  const PixelLayout& layout = samples.Layout();
  const bool isRead = detail::IsSingleBand(layout) ? detail::IsStretched(layout)
                                                   : IsStretchedColor(layout, stretch);
  if (!isRead) return stretch;
  const detail::FoundRange found = detail::FindRange(samples, noData, stretch);
  if (!found.range) return stretch;
  NumberStretch settled;
  settled.kind = NumberStretch::Kind::fixed;
  settled.least = detail::DoubleOf(found.range->black);
  settled.greatest = detail::DoubleOf(found.range->white);
  return settled;
}

Raster VisiblePixels(Pixels pixels, const std::string& noData, Changes& changes,
                     const NumberStretch& stretch) {
  if (auto* rows = std::get_if<Raster>(&pixels)) return std::move(*rows);
  const LimitsScope limits;
  const Samples& samples = std::get<Samples>(pixels);
  const PixelLayout& layout = samples.Layout();
  Raster raster = Shown(samples, noData, stretch, changes);
  raster.resolution = samples.resolution;
  raster.profile = ProfileFor(raster, layout);
  NoteLosses(layout, changes);
  return raster;
}

}  // namespace rasterkit
