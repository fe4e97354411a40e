#pragma once

#include <cstdint>

namespace rasterkit::kernels {

/// One side of the gray scale: the grays from `level` on (`upper`), or those below it. `level` may
/// be any number: at 0 and less every gray lies above, beyond 255 every gray lies below.
struct GraySide {
  int level;
  bool upper;

  constexpr bool Holds(uint8_t gray) const { return (gray >= level) == upper; }
};

constexpr GraySide GraysAbove(uint8_t threshold) {
  return {threshold + 1, true};
}
constexpr GraySide GraysBelow(uint8_t threshold) {
  return {threshold, false};
}

}  // namespace rasterkit::kernels
