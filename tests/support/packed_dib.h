#pragma once

#include <cstdint>
#include <vector>

#include "tests/support/bmp_file.h"

namespace rasterkit::test {

/// The bitmap as records hold it: the file without its file header.
inline std::vector<uint8_t> PackedDib(const BmpFile& file) {
  const std::vector<uint8_t> bytes = file.Bytes();
  return {bytes.begin() + 14, bytes.end()};
}

/// 3 x 2 pixels of 24 bits, from the upper left one: red, green, blue, white, black, gray.
inline BmpFile SixColors() {
  BmpFile file;
  file.width = 3;
  file.height = 2;
  file.pixels = {255, 255, 255, 0, 0,   0, 128, 128, 128, 0, 0, 0,
                 0,   0,   255, 0, 255, 0, 255, 0,   0,   0, 0, 0};
  return file;
}

}  // namespace rasterkit::test
