#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <rasterkit/kernels/gray/gray.h>

namespace rasterkit::test {

/// All 16,777,216 colors, sorted by their gray value (of one gray in no order that matters): the
/// ones of gray g are those from `starts[g]` to `starts[g + 1]`. A threshold is right everywhere
/// when it is right for the colors just above it and just below it.
struct ColorsByGray {
  std::vector<uint32_t> colors;
  std::array<size_t, 257> starts{};
};

inline ColorsByGray SortColorsByGray() {
  const auto gray = [](uint32_t color) {
    return size_t{kernels::GrayOf(static_cast<uint8_t>(color >> 16),
                                  static_cast<uint8_t>(color >> 8), static_cast<uint8_t>(color))};
  };
  ColorsByGray sorted;
  constexpr uint32_t kColors = 1 << 24;
  for (uint32_t color = 0; color < kColors; ++color) ++sorted.starts[gray(color) + 1];
  for (size_t g = 1; g <= 256; ++g) sorted.starts[g] += sorted.starts[g - 1];
  sorted.colors.resize(kColors);
  std::array<size_t, 257> next = sorted.starts;
  for (uint32_t color = 0; color < kColors; ++color) sorted.colors[next[gray(color)]++] = color;
  return sorted;
}

/// Made once for a program.
inline const ColorsByGray& EveryColorByGray() {
  static const ColorsByGray sorted = SortColorsByGray();
  return sorted;
}

/// The colors of two neighboring grays, `level - 1` and `level` (1 to 255), as pixels of 3 or 4
/// bytes; `lower` becomes how many of them, the first ones, have the smaller gray.
inline std::vector<uint8_t> PixelsAround(int level, int bytesPerPixel, size_t& lower) {
  const ColorsByGray& all = EveryColorByGray();
  const auto at = static_cast<size_t>(level);
  lower = all.starts[at] - all.starts[at - 1];
  std::vector<uint8_t> pixels;
  pixels.reserve((all.starts[at + 1] - all.starts[at - 1]) * 4);
  for (size_t i = all.starts[at - 1]; i < all.starts[at + 1]; ++i) {
    for (int byte = 0; byte < 3; ++byte)
      pixels.push_back(static_cast<uint8_t>(all.colors[i] >> 8 * byte));
    if (bytesPerPixel == 4) pixels.push_back(static_cast<uint8_t>(i * 7));
  }
  return pixels;
}

}  // namespace rasterkit::test
