#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>

namespace rasterkit::detail {

/// How the segments of metadata are written.
struct JpegMetadataWish {
  bool writesJfif = true;
  /// Payload of the JFIF header of a file that is copied; it keeps version and thumbnail.
  std::span<const uint8_t> jfif;
  /// A profile of another kind of pixels is not written; nothing: any profile is.
  std::optional<ProfileSpace> space;
};

/// The segments of metadata in their usual order, complete with markers. What has no place in a
/// JPEG file is a loss.
std::vector<uint8_t> JpegMetadataSegments(const Metadata& metadata, const JpegMetadataWish& wish,
                                          Changes& changes);

/// Appends a segment. The payload has at most 65,533 bytes.
void AppendSegment(uint8_t marker, std::span<const uint8_t> payload, std::vector<uint8_t>& target);

}  // namespace rasterkit::detail
