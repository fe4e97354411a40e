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
/// entries can be nearest to any colour in it; from then on only those few are compared. Answers
/// are remembered too: a picture asks for the same colours again and again.
class NearestColor {
 public:
  explicit NearestColor(std::span<const tagPALETTEENTRY> entries);

  uint8_t Of(const RGBArec& pixel) {
    const uint32_t color =
        static_cast<uint32_t>(pixel.r) << 16 | static_cast<uint32_t>(pixel.g) << 8 | pixel.b;
    uint32_t& answer = answers_[color * 0x9E3779B1u >> 16];
    if (answer >> 8 != color) answer = color << 8 | Find(pixel);
    return static_cast<uint8_t>(answer);
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
  // The last answer of each hash, colour above index. Zero is black's, which only slot 0 can ask
  // for.
  std::vector<uint32_t> answers_;
};

}  // namespace rasterkit
