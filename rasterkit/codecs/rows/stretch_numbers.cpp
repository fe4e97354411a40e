#include <algorithm>
#include <cmath>

#include <rasterkit/codecs/rows/stretch_numbers.h>

namespace rasterkit::detail {

namespace {

NumberRange RangeOf(const double* numbers, size_t count) {
  NumberRange range;
  bool isFirst = true;
  for (size_t i = 0; i < count; i++) {
    const double number = numbers[i];
    if (!std::isfinite(number)) continue;
    range.least = isFirst ? number : std::min(range.least, number);
    range.greatest = isFirst ? number : std::max(range.greatest, number);
    isFirst = false;
  }
  return range;
}

}  // namespace

uint8_t GrayOf(double number, const NumberRange& range) {
  if (std::isnan(number)) return 255;
  if (std::isinf(number)) return number > 0 ? 255 : 0;
  // Halved, because the difference of two finite numbers can be infinite. Subnormal differences are
  // lost.
  const double span = range.greatest / 2 - range.least / 2;
  if (span == 0) return 0;
  return static_cast<uint8_t>(std::lround((number / 2 - range.least / 2) / span * 255));
}

NumberRange StretchNumbers(const double* numbers, Raster& raster) {
  const auto width = static_cast<size_t>(raster.Width());
  const NumberRange range = RangeOf(numbers, width * static_cast<size_t>(raster.Height()));
  for (int y = 0; y < raster.Height(); y++) {
    uint8_t* target = raster.Row(y);
    for (size_t x = 0; x < width; x++, target += 4) {
      const uint8_t gray = GrayOf(*numbers++, range);
      target[0] = target[1] = target[2] = gray;
      target[3] = 255;
    }
  }
  return range;
}

}  // namespace rasterkit::detail
