#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>

namespace rasterkit::detail {

/// One APP2 segment of a colour profile that is spread over several.
struct JpegProfilePiece {
  int number = 0, count = 0;
  std::span<const uint8_t> bytes;
};

/// How a JPEG file is laid out, learnt by walking its markers; nothing is decoded.
struct JpegLayout {
  JpegFrame frame;
  /// Several scans make up the picture (progressive, or one for each component): all of them must
  /// be read.
  bool manyScans = false;
  std::vector<JpegProfilePiece> profile;
  /// Bytes up to which every segment is whole. Beyond it lies a segment that the file's end cuts
  /// off.
  size_t wholeBytes = 0;
  bool cutOff = false;
};

/// Walks from the start to the first scan, for pictures of many scans to the end of the file. Bytes
/// between segments are skipped, as decoders do. Throws FormatError when there is no frame or no
/// scan, or a header segment is cut off.
JpegLayout ReadJpegLayout(std::span<const uint8_t> bytes);

/// The pieces put together in their order; empty when there are none or some are missing. A single
/// piece is taken whatever its number says.
std::vector<uint8_t> JoinProfile(const std::vector<JpegProfilePiece>& pieces);

}  // namespace rasterkit::detail
