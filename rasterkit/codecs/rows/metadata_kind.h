#pragma once

#include <span>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What a picture file can hold besides the pixels of its first picture, and what a conversion can
/// lose.
enum class MetadataKind {
  // Blocks of picture files.
  exif,
  xmp,
  iptc,
  comment,
  text,
  profile,
  // Sections that only JPEG files have.
  jfif,
  jfxx,
  adobe,
  mpf,
  // Facts about the picture itself.
  gps,
  grid,
  pages,
  records,
  resolution,
  transparency,
  // What places it on a map: a world file, pixel scale with tie point, a transformation and so on.
  worldFile,
  geoTiff,
  geoTiffTransformation,
  tiePoints,
  coordinateSystem,
  noData,
};

/// The name in reports, "exif" or "tie-points".
RASTERKIT_EXPORT const char* MetadataKindName(MetadataKind kind);

/// The names of several kinds, in the same order.
RASTERKIT_EXPORT std::vector<std::string> MetadataKindNames(std::span<const MetadataKind> kinds);

}  // namespace rasterkit
