#include <utility>

#include <fmt/format.h>

#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/codecs/rows/icc_profile.h>
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

}  // namespace

Raster VisiblePixels(Pixels pixels, const std::string& noData, Changes& changes) {
  if (auto* rows = std::get_if<Raster>(&pixels)) return std::move(*rows);
  const LimitsScope limits;
  const Samples& samples = std::get<Samples>(pixels);
  const PixelLayout& layout = samples.Layout();
  const bool isNumbers = IsGray(layout) && !detail::HasAlphaBand(layout);
  Raster raster = isNumbers ? detail::VisibleNumbers(samples, noData, changes)
                            : detail::VisibleColors(samples, changes);
  raster.resolution = samples.resolution;
  raster.profile = ProfileFor(raster, layout);
  NoteLosses(layout, changes);
  return raster;
}

}  // namespace rasterkit
