#pragma once

#include <span>

#include <rasterkit/host/codecs/codec_report.h>
#include <rasterkit/host/raster/raster.h>

namespace rasterkit {

/// Decodes a JPEG file's bytes: grey to pf8bit with a grey ramp of 256, colour to pf24bit; CMYK and YCCK (with and
/// without an Adobe marker) are converted. Resolution and ICC profile come along. A truncated file gives the rows that
/// are there and a warning. Throws FormatError, UnsupportedError (12 bits a sample, lossless), LimitError.
RASTERKIT_EXPORT Raster DecodeJpeg(std::span<const uint8_t> bytes, CodecReport* report = nullptr);

/// What the frame header says, without decoding.
struct JpegFrame {
  int width = 0, height = 0;
  int components = 0;
  bool progressive = false, arithmetic = false;
};
RASTERKIT_EXPORT JpegFrame ReadJpegFrame(std::span<const uint8_t> bytes);

}  // namespace rasterkit
