#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_parts.h>
#include <rasterkit/metadata/metadata.h>

namespace rasterkit::detail {

/// Facts of a JFIF header.
struct JfifFacts {
  Resolution resolution;
  /// Dots per inch of one unit of the header: 1 or 2.54; 0 without a unit.
  double unit = 0;
};

/// Collects the metadata of the segments in front of the first scan: pieces of one block are
/// joined. Damaged blocks are left out or cut off, with a warning. Orientation, resolution and
/// Photoshop's resources are not interpreted.
struct JpegBlocks {
  Metadata metadata;
  JfifFacts jfif;
  /// Image resources as they stand, IPTC records included.
  std::vector<uint8_t> resources;
  std::vector<std::string> warnings;
};

JpegBlocks CollectJpegBlocks(const JpegParts& parts);

}  // namespace rasterkit::detail
