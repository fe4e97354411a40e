#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/codecs/tiff/pages/tag_reader.h>

namespace rasterkit::detail {

/// The encoded strips or tiles of a directory as they lie in the file.
struct StoredBlocks {
  bool isTiled = false;
  /// Of each block; both 0 for one that a sparse file leaves out.
  std::vector<uint64_t> places, counts;
  /// True if the only block reaches to the end of the file because nothing says how long it is.
  bool isSizeUnknown = false;
};

/// Lists the blocks; empty if the directory has none. Missing sizes are computed where they follow
/// from the others; else FormatError is thrown.
StoredBlocks BlocksOf(const TagReader& reader, const TagDirectory& directory);

}  // namespace rasterkit::detail
