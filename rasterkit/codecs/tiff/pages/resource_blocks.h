#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/metadata/resolution.h>

namespace rasterkit::detail {

/// The image resources of tag 34377, taken apart.
struct ResourceBlocks {
  /// All but the IPTC records (resource 1028), as in the file.
  std::vector<uint8_t> others;
  /// The records of resource 1028; empty if there are none.
  std::vector<uint8_t> iptc;
  /// Of resource 1005; unknown if absent.
  Resolution resolution;
};

/// Walks the resources; what follows a damaged one is kept in `others`.
ResourceBlocks TakeApart(std::span<const uint8_t> resources);

}  // namespace rasterkit::detail
