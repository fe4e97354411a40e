#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Searches for the nearest of some colors: the least sum of squared channel differences, the
/// first among equals.
namespace rasterkit::kernels {

/// At most 256 colors with channels from 0 to 1023.
struct ColorList {
  alignas(64) std::array<int32_t, 256> blue, green, red;
  size_t count = 0;
};

/// The number of the nearest color; the list is not empty.
uint8_t NearestInList(const ColorList& colors, int blue, int green, int red);

/// A cell is a cube of 8 x 8 x 8 colors; a color's number in it has the low bits of red, green
/// and blue, red on top.
inline constexpr int kCellSide = 8;
inline constexpr int kCellColors = kCellSide * kCellSide * kCellSide;

/// One of the colors that may be nearest to a color of a cell; `index` is the answer then.
struct CellCandidate {
  int32_t blue = 0, green = 0, red = 0;
  uint8_t index = 0;
};

/// The answer for each color of the cell whose least channels are `blue`, `green` and `red` (0 to
/// 248): the nearest candidate's index, the lowest index among equals. Channels of candidates are 0
/// to 255; there is at least one and at most 256.
void AnswerCell(const CellCandidate* candidates, size_t count, int blue, int green, int red,
                uint8_t* answers);

/// Where 32-bit pixels find their answers: the number of a pixel's cell (the high five bits of red,
/// green and blue, red on top) times kCellColors, plus its number in the cell.
void CellPlaces(const uint8_t* bgra, size_t count, uint32_t* places);

}  // namespace rasterkit::kernels
