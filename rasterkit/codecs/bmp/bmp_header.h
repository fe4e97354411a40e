#pragma once

#include <cstdint>

#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// What the headers of a bitmap file say, checked as far as can be without the pixels.
struct BmpHeader {
  int width = 0, height = 0;  // 1 and up, except for an embedded picture, which knows its own
  bool topDown = false;
  int bits = 0;
  BmpCompression compression = BmpCompression::none;
  BmpMasks masks;
  Resolution resolution;
  /// Number of palette entries the file has room for, and where they are; 0 for true colour.
  int paletteEntries = 0;
  int paletteEntryBytes = 4;
  /// Offsets from the start of the file.
  uint64_t paletteOffset = 0, pixelOffset = 0;
  /// Bytes from `pixelOffset` to the end of the data.
  uint64_t pixelBytes = 0;
  /// Where the ICC profile is; `profileBytes` is 0 when there is none.
  uint64_t profileOffset = 0, profileBytes = 0;
};

/// Reads the headers of the bitmap file that starts at `start` and ends with the stream.
/// Throws FormatError when they make no sense, UnsupportedError for a compression that is not read.
BmpHeader ReadBmpHeader(TStream& stream, uint64_t start, CodecReport& report);

}  // namespace rasterkit::detail
