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
/// joined. Damaged blocks are skipped or cut off, with a warning. Orientation and resolution
/// are not interpreted.
struct JpegBlocks {
  Metadata metadata;
  JfifFacts jfif;
  /// Of the Photoshop resources.
  Resolution photoshop;
  std::vector<std::string> warnings;
};

JpegBlocks CollectJpegBlocks(const JpegParts& parts);

}  // namespace rasterkit::detail
