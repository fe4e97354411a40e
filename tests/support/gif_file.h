#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/raster/palette.h>

namespace rasterkit::test {

/// One picture of a GIF file, packed without a GIF library.
struct GifPicture {
  uint16_t left = 0, top = 0, width = 1, height = 1;
  bool interlaced = false;
  /// 2, 4, 8 ... 256 entries, or none.
  HPALETTE palette;
  std::optional<uint8_t> transparent;
  /// Bits of an index, 2 to 8.
  int bits = 8;
  /// Rows from the top, a byte a pixel.
  std::vector<uint8_t> indexes;
  /// Pixels after which the data say that they end.
  std::optional<size_t> stopAfter;

  uint8_t At(int x, int y) const {
    return indexes[static_cast<size_t>(y) * width + static_cast<size_t>(x)];
  }
};

/// A GIF file, field by field.
struct GifFile {
  uint16_t screenWidth = 0, screenHeight = 0;
  HPALETTE palette;
  uint8_t background = 0;
  std::vector<GifPicture> pictures;
  /// Put in front of the pictures, for instance a comment.
  std::vector<uint8_t> extensions;

  std::vector<uint8_t> Bytes() const;
};

/// A file of one picture that fills the screen, with indexes that rise with x and y and a global
/// palette of 2^bits entries, all of them different.
GifFile PlainGif(uint16_t width, uint16_t height, int bits = 8);

/// "!", the function, the data in blocks of at most 255 bytes.
std::vector<uint8_t> GifExtension(uint8_t function, const std::vector<uint8_t>& data);

}  // namespace rasterkit::test
