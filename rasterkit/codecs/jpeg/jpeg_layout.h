#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_parts.h>

namespace rasterkit::detail {

/// The layout of a JPEG file, from its markers; nothing is decoded.
struct JpegLayout {
  JpegFrame frame;
  /// The picture has several scans (progressive, or one per component); all of them must be read.
  bool manyScans = false;
  std::vector<JpegProfilePart> profile;
  /// Bytes up to which all segments are complete. A truncated segment follows.
  size_t wholeBytes = 0;
  bool cutOff = false;
};

/// Walks from the start to the first scan, or to the end of the file if there are many scans. Bytes
/// between segments are skipped, as decoders do. Throws FormatError if there is no frame or no
/// scan, or a header segment is truncated.
JpegLayout ReadJpegLayout(std::span<const uint8_t> bytes);

/// The same from a walked head; walks on to the end if there are many scans.
JpegLayout LayoutOfJpeg(std::span<const uint8_t> bytes, JpegParts& parts);

/// Joins the pieces in their order; empty if there are none or some are missing. A single piece is
/// taken regardless of its number.
std::vector<uint8_t> JoinProfile(const std::vector<JpegProfilePart>& pieces);

}  // namespace rasterkit::detail
