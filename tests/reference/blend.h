#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Mixing pixels, one by one.
namespace rasterkit::reference {

/// round(s a + t (1 - a)) for a = weight / 65025.
inline uint8_t MixedChannel(int source, int target, int weight) {
  const int64_t twice = 2 * (int64_t{source} * weight + int64_t{target} * (65025 - weight));
  return static_cast<uint8_t>((twice + 65025) / (2 * 65025));
}

/// Pixels B G R A over pixels of 3 or 4 bytes.
inline std::vector<uint8_t> BlendedRow(const std::vector<uint8_t>& source, int constant,
                                       bool pixelAlpha, std::vector<uint8_t> target,
                                       size_t targetBytes) {
  for (size_t x = 0; 4 * x < source.size(); ++x) {
    const uint8_t* from = source.data() + 4 * x;
    uint8_t* to = target.data() + targetBytes * x;
    const int weight = (pixelAlpha ? from[3] : 255) * constant;
    for (size_t c = 0; c < 3; ++c) to[c] = MixedChannel(from[c], to[c], weight);
    if (targetBytes == 4) to[3] = MixedChannel(255, to[3], weight);
  }
  return target;
}

}  // namespace rasterkit::reference
