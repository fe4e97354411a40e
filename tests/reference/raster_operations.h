#pragma once

#include <cstdint>

/// Raster operations bit by bit, straight from how they are numbered.
namespace rasterkit::reference {

/// `number` 1 to 16: bit (2 pen + picture) of (number - 1), for each of the 32 bits.
inline uint32_t BinaryOperation(unsigned number, uint32_t pen, uint32_t picture) {
  uint32_t result = 0;
  for (unsigned bit = 0; bit < 32; ++bit) {
    const unsigned place = 2 * (pen >> bit & 1) + (picture >> bit & 1);
    result |= ((number - 1) >> place & 1) << bit;
  }
  return result;
}

/// `table` 0 to 255: bit (4 brush + 2 source + picture) of it.
inline uint32_t TernaryOperation(unsigned table, uint32_t brush, uint32_t source,
                                 uint32_t picture) {
  uint32_t result = 0;
  for (unsigned bit = 0; bit < 32; ++bit) {
    const unsigned place = 4 * (brush >> bit & 1) + 2 * (source >> bit & 1) + (picture >> bit & 1);
    result |= (table >> place & 1) << bit;
  }
  return result;
}

}  // namespace rasterkit::reference
