#pragma once

#include <cstdint>

#include <rasterkit/codecs/bmp/bmp_format.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// The headers of a bitmap file, checked as far as possible without the pixels.
struct BmpHeader {
  int width = 0, height = 0;  // at least 1, except for an embedded picture, which has its own
  bool topDown = false;
  int bits = 0;
  BmpCompression compression = BmpCompression::none;
  BmpMasks masks;
  Resolution resolution;
  /// Number of palette entries that the file has, and their place; 0 for true color.
  int paletteEntries = 0;
  int paletteEntryBytes = 4;
  /// Offsets from the start of the file.
  uint64_t paletteOffset = 0, pixelOffset = 0;
  /// Bytes from `pixelOffset` to the end of the data.
  uint64_t pixelBytes = 0;
  /// Place of the ICC profile; `profileBytes` is 0 if there is none.
  uint64_t profileOffset = 0, profileBytes = 0;
};

/// Reads the headers of the bitmap file that starts at `start` and ends with the stream.
/// Throws FormatError for invalid headers, UnsupportedError for an unsupported compression.
BmpHeader ReadBmpHeader(TStream& stream, uint64_t start, CodecReport& report);

}  // namespace rasterkit::detail
