#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/host/raster/palette.h>
#include <rasterkit/host/raster/pixel_format.h>

namespace rasterkit {

/// Finds the nearest palette entry of many colours: the least sum of squared channel differences,
/// the lowest index among equals, exactly as `NearestEntry`.
///
/// The colour cube is cut into cells of 8 x 8 x 8 colours. A cell's first question finds out which
/// entries can be nearest to any colour in it; from then on only those few are compared.
class NearestColor {
 public:
  explicit NearestColor(std::span<const tagPALETTEENTRY> entries);

  uint8_t Of(const RGBArec& pixel) {
    const uint32_t color =
        static_cast<uint32_t>(pixel.r) << 16 | static_cast<uint32_t>(pixel.g) << 8 | pixel.b;
    if (color == lastColor_) return last_;
    lastColor_ = color;
    return last_ = Find(pixel);
  }

 private:
  struct Entry {
    int16_t red, green, blue;
    uint8_t index;
  };
  struct Cell {
    uint32_t first = 0;
    uint32_t count = 0;  // 0: not asked yet
  };

  uint8_t Find(const RGBArec& pixel);
  void Explore(Cell& cell, int red, int green, int blue);

  std::vector<Entry> entries_;
  std::vector<Cell> cells_;
  std::vector<uint8_t> candidates_;  // positions in entries_
  uint32_t lastColor_ = ~0u;
  uint8_t last_ = 0;
};

}  // namespace rasterkit
