#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/kernels/palette/nearest_colors.h>
#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>

namespace rasterkit {

/// Finds the nearest palette entries of many colors: the least sum of squared channel differences,
/// the lowest index among equals, exactly as `NearestEntry`.
///
/// The color cube is divided into cells of 8 x 8 x 8 colors. The first lookup in a cell computes
/// all its colors, because a picture has many similar colors. Only the few entries that can be
/// nearest to a color of the cell are compared; the others are excluded for eight cells at once,
/// then for the cell.
class NearestColor {
 public:
  explicit NearestColor(std::span<const tagPALETTEENTRY> entries);

  uint8_t Of(const RGBArec& pixel) {
    const auto cell = static_cast<uint32_t>(pixel.r >> 3 << 10 | pixel.g >> 3 << 5 | pixel.b >> 3);
    const auto inside =
        static_cast<uint32_t>((pixel.r & 7) << 6 | (pixel.g & 7) << 3 | (pixel.b & 7));
    return AnswerAt(cell * kernels::kCellColors + inside);
  }

  /// Finds the entries of `count` pixels.
  void OfRow(const RGBArec* pixels, size_t count, uint8_t* indexes);

 private:
  /// Pixels whose answers are fetched at the same time.
  static constexpr size_t kTogether = 64;
  using Candidate = kernels::CellCandidate;

  // Range of candidates_; empty until it is needed.
  struct Group {
    uint32_t first = 0;
    uint32_t count = 0;
  };

  uint8_t AnswerAt(uint32_t place) {
    uint32_t& block = blocks_[place / kernels::kCellColors];
    if (block == 0) {
      [[unlikely]] block = AnswerCell(place / kernels::kCellColors);
    }
    return answers_[size_t{block} * kernels::kCellColors + place % kernels::kCellColors];
  }

  void AnswerFromCache(const uint32_t* places, size_t count, uint8_t* indexes);
  /// The same for a table that is too large for the caches. At most kTogether pixels.
  void AnswerRun(const uint32_t* places, size_t count, uint8_t* indexes);
  uint32_t AnswerCell(uint32_t cell);
  Group& GroupOf(int blue, int green, int red);

  std::vector<Candidate> entries_;
  std::vector<Group> groups_;
  std::vector<Candidate> candidates_;
  std::vector<Candidate> inReach_;  // of one cell, kept for its memory
  std::vector<uint32_t> blocks_;    // for each cell, its number in answers_; 0: not computed yet
  std::vector<uint8_t> answers_;
  std::vector<uint32_t> places_;  // of a row's pixels
};

}  // namespace rasterkit
