#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <rasterkit/codecs/shown_numbers.h>
#include <rasterkit/codecs/visible_numbers.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kColors = 3, kWithAlpha = 4;

/// Writes the grays of one band to every color that it is.
void PutBand(const ShownRow& row, const GraySteps& steps, size_t bands, size_t band, size_t pitch,
             uint8_t* target) {
  for (const uint64_t key : row.keys) {
    const uint8_t light = steps.Of(key);
    if (bands == 1) {
      std::fill_n(target, kColors, light);
    } else {
      target[kColors - 1 - band] = light;
    }
    target += pitch;
  }
}

}  // namespace

Raster StretchedColors(const Samples& samples, const std::string& noData,
                       const NumberStretch& stretch, Changes& changes) {
  const bool hasAlpha = HasAlphaBand(samples.Layout());
  const size_t pitch = hasAlpha ? kWithAlpha : kColors;
  Raster raster(hasAlpha ? pf32bit : pf24bit, samples.Width(), samples.Height());
  if (hasAlpha) raster.alphaFormat = afDefined;
  const FoundRange found = FindRange(samples, noData, stretch);
  NoteRange(found, changes);
  const ShownNumbers numbers(samples, noData);
  const GraySteps steps(numbers.Type(), found.range.value_or(ShownRange()));
  const auto bands = static_cast<size_t>(numbers.Bands());
  const auto width = static_cast<size_t>(samples.Width());
  ShownRow row;
  std::vector<uint8_t> isMeasured(width), opacity(width);
  for (int y = 0; y < samples.Height(); ++y) {
    RequireTime();
    uint8_t* const target = raster.Row(y);
    std::fill(isMeasured.begin(), isMeasured.end(), uint8_t{0});
    for (size_t band = 0; band < bands; ++band) {
      numbers.Read(y, static_cast<int>(band), row);
      PutBand(row, steps, bands, band, pitch, target);
      for (size_t x = 0; x < width; ++x) isMeasured[x] |= row.isMeasured[x];
    }
    if (hasAlpha) ReadOpacity(samples, y, opacity.data());
    for (size_t x = 0; x < width; ++x) {
      const bool isShown = isMeasured[x] != 0 && found.range;
      if (!isShown) std::fill_n(target + x * pitch, kColors, uint8_t{255});
      if (hasAlpha) target[x * pitch + kColors] = opacity[x];
    }
  }
  raster.ClearPadding();
  return raster;
}

}  // namespace rasterkit::detail
