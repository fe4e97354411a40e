#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include <jpeglib.h>

#include <rasterkit/codecs/rows/picture_move.h>

#include "tests/reference/turn_blocks_reference.h"

/// Coefficients of JPEG files, read and written with the bare library.
namespace rasterkit::test {

struct BareComponent {
  int id = 1, h = 1, v = 1, table = 0;
  /// Of the quantization table, row by row.
  std::array<uint16_t, 64> steps{};
  /// Blocks that hold pixels.
  int columns = 0, rows = 0;
  std::vector<reference::Block> blocks;

  const reference::Block& At(int x, int y) const {
    return blocks[static_cast<size_t>(y) * static_cast<size_t>(columns) + static_cast<size_t>(x)];
  }
};

struct BareJpeg {
  int width = 0, height = 0;
  J_COLOR_SPACE space = JCS_UNKNOWN;
  bool progressive = false, arithmetic = false, hasAdobe = false, hasJfif = false;
  int restartInterval = 0;
  std::vector<BareComponent> components;
  /// Of the library after the first header of a scan.
  long warnings = 0;
};

/// Reads a whole file; a fatal error of the library ends the program.
BareJpeg ReadBare(std::span<const uint8_t> file);

/// What is written besides the picture.
struct BareWriting {
  /// A scan for each component.
  bool separatesComponents = false;
  std::vector<jpeg_scan_info> scans = {};
  bool optimizes = true;
};

/// Writes the coefficients. Columns and rows of the components must be those of the sides.
std::vector<uint8_t> WriteBare(const BareJpeg& picture, const BareWriting& writing = {});

/// Sampling factors of a component.
struct BareSampling {
  int h = 1, v = 1;
};

/// A picture of random coefficients, most of them 0, with tables that no transposition leaves the
/// same.
BareJpeg RandomBare(int width, int height, J_COLOR_SPACE space,
                    const std::vector<BareSampling>& samplings, unsigned seed);

/// The plain rule of a move: blocks are cut out, the axes exchanged, columns and rows reversed.
BareJpeg MovedBare(const BareJpeg& source, const PictureMove& move);

/// Empty, or the first difference in sides, components, tables or coefficients.
std::string DifferenceOf(const BareJpeg& a, const BareJpeg& b);

}  // namespace rasterkit::test
