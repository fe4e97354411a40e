#pragma once

#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Decodes a JPEG file: gray to pf8bit with a gray ramp of 256, color to pf24bit. The resolution
/// (if the file has a unit) and the ICC profile are kept.
///
/// CMYK and YCCK become R = C' K' / 255 with C' = 255 - C and so on, without their press profile.
/// With an Adobe marker the file holds C' and K' themselves, without one it holds C and K (0 is no
/// ink).
///
/// A truncated file gives the rows present, white below them, and a warning; a file without a
/// complete row is refused. Damaged data give what can be decoded, and a warning.
///
/// Throws FormatError; UnsupportedError for 12 bits per sample, lossless and hierarchical files, 2
/// or more than 4 components; LimitError if rows and coefficients exceed the picture memory limit
/// or the scans would take minutes.
RASTERKIT_EXPORT Raster DecodeJpeg(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

/// The same for a smaller picture: each pixel stands for `denominator` pixels of the file in both
/// directions (1, 2, 4 or 8), the last ones for fewer. Reads from the stream's position on; no more
/// than a part of a file of one scan is held.
RASTERKIT_EXPORT Raster DecodeSmallerJpeg(TStream& stream, int denominator,
                                          CodecReport* report = nullptr);

/// The frame header.
struct JpegFrame {
  int width = 0, height = 0;
  int components = 0;
  /// Bits per sample.
  int bits = 8;
  bool progressive = false, arithmetic = false, lossless = false, hierarchical = false;
};
/// Reads the headers alone. Throws FormatError if they are damaged or end before the first scan.
RASTERKIT_EXPORT JpegFrame ReadJpegFrame(std::span<const uint8_t> bytes);

}  // namespace rasterkit
