#pragma once

#include <cstdint>
#include <cstring>

#include <rasterkit/raster/samples.h>

namespace rasterkit::test {

/// Gray of 16 bits whose numbers rise with x and y, from 0 to about 4000.
inline Samples DeepGray(int width, int height) {
  PixelLayout layout;
  layout.type = NumberType::uint16;
  layout.bits = 16;
  layout.bands = 1;
  layout.model = ColorModel::gray;
  Samples samples(layout, width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto number = static_cast<uint16_t>(4000 * (x + y) / (width + height));
      std::memcpy(samples.Row(y) + static_cast<size_t>(x) * sizeof number, &number, sizeof number);
    }
  }
  return samples;
}

}  // namespace rasterkit::test
