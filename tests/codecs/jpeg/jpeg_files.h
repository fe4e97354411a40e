#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <span>
#include <vector>

#include <jpeglib.h>

/// JPEG files and decodings made with the bare library, to hold the decoder against.
namespace rasterkit::test {

struct JpegRecipe {
  int width = 16, height = 16;
  J_COLOR_SPACE pixels = JCS_RGB;
  /// What the file holds; JCS_UNKNOWN leaves the library's choice.
  J_COLOR_SPACE file = JCS_UNKNOWN;
  int components = 3;
  bool adobeMarker = true;
  bool progressive = false;
  bool arithmetic = false;
  int restartRows = 0;
  int densityUnit = 0, densityX = 1, densityY = 1;
  int quality = 90;
};

/// A picture of smooth gradients.
std::vector<uint8_t> MakeJpeg(const JpegRecipe& recipe);

/// Rows of the bare library's decoding into `space`, without padding between them.
std::vector<uint8_t> BareDecode(std::span<const uint8_t> bytes, J_COLOR_SPACE space);

/// Position behind the marker's two bytes of its first occurrence as a header segment; fails the
/// test when absent.
size_t FindMarker(std::span<const uint8_t> bytes, uint8_t marker);

}  // namespace rasterkit::test
