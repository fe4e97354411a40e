#pragma once

#include <span>

#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Decodes a JPEG file's bytes: grey to pf8bit with a grey ramp of 256, colour to pf24bit.
/// Resolution (where the file states a unit) and ICC profile come along.
///
/// CMYK and YCCK become R = C' K' / 255 with C' = 255 - C and so on, without their press profile.
/// With an Adobe marker the file holds C' and K' themselves, without one it holds C and K (0 is no
/// ink).
///
/// A truncated file gives the rows that are there, white below them, and a warning; one without a
/// whole row is refused. Damage inside the data gives what can be made of it, and a warning.
///
/// Throws FormatError; UnsupportedError for 12 bits a sample, lossless and hierarchical files, 2 or
/// more than 4 components; LimitError when rows and coefficients exceed the picture memory budget
/// or the scans would take minutes.
RASTERKIT_EXPORT Raster DecodeJpeg(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

/// What the frame header says.
struct JpegFrame {
  int width = 0, height = 0;
  int components = 0;
  /// Bits a sample.
  int bits = 8;
  bool progressive = false, arithmetic = false, lossless = false, hierarchical = false;
};
/// Reads the headers alone. Throws FormatError when they are damaged or cut off before the first
/// scan.
RASTERKIT_EXPORT JpegFrame ReadJpegFrame(std::span<const uint8_t> bytes);

}  // namespace rasterkit
