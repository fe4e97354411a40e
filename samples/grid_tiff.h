#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rasterkit::samples {

/// A grid of numbers for a TIFF file: one sample a pixel, uncompressed, little-endian.
struct GridTiff {
  int width = 0, height = 0;
  /// 1 unsigned, 2 signed, 3 floating point.
  int bits = 32, sampleFormat = 3;
  /// Photometric interpretation 0: the least number is white.
  bool isWhiteZero = false;
  /// Rows from the top without padding, little-endian.
  std::vector<uint8_t> values;
  /// Contents of the tags 33550, 33922 and 34264; an empty one is left away.
  std::vector<double> pixelScale, tiePoints, transformation;
  /// The raster type key; without it no key directory is written.
  bool pixelIsPoint = false;
  /// Text of tag 42113.
  std::string noData;
  /// Tag 274; 0 leaves it away.
  int orientation = 0;
};

std::vector<uint8_t> GridTiffBytes(const GridTiff& grid);

/// Hills with a lake of -9999, in which nothing was measured; placed beside the plan.
GridTiff MakeTerrain(int width, int height);

}  // namespace rasterkit::samples
