#pragma once

#include <cstdint>
#include <vector>

/// The rule, pixel by pixel: fully transparent pixels become opaque white.
namespace rasterkit::reference {

inline std::vector<uint8_t> Whitened(std::vector<uint8_t> bgra) {
  for (size_t i = 0; i + 4 <= bgra.size(); i += 4)
    if (bgra[i + 3] == 0)
      for (size_t c = 0; c < 4; ++c) bgra[i + c] = 255;
  return bgra;
}

}  // namespace rasterkit::reference
