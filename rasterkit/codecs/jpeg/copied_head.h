#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_parts.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>

namespace rasterkit::detail {

/// True for what belongs to the coded pixels: tables, frame, scan, the Adobe segment.
bool IsCodingSegment(const JpegSegment& part);

/// Appends a segment with its marker and length.
void AppendSegment(std::vector<uint8_t>& bytes, uint8_t marker, std::span<const uint8_t> payload);

/// How the head of a copy differs from that of the source.
struct CopiedHead {
  /// Thumbnails of the JFIF header and its extensions are not written.
  bool dropsThumbnails = false;
  /// A JFIF header without a unit, which states the shape of a pixel, exchanges its densities.
  bool exchangesAxes = false;
};

/// Appends the segments of a file whose coded pixels are copied, from JFIF to comments. What did
/// not change between the metadata of the source and the new ones keeps its bytes and its place;
/// what changed stands where it was in the source.
void AppendMetadata(std::vector<uint8_t>& bytes, const JpegParts& parts, const Metadata& source,
                    const Metadata& metadata, const CopiedHead& options, Changes& changes);

}  // namespace rasterkit::detail
