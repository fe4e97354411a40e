#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rasterkit {

/// What became of a metafile's records.
struct PlayReport {
  /// Records of kinds that are known, also of those that leave nothing to be seen.
  uint32_t played = 0;
  /// Records that are damaged or of a kind that is not known, and lost nothing but themselves.
  uint32_t skipped = 0;
  /// Each reason once, in the order of the records.
  std::vector<std::string> warnings;
  /// False when `keepGoing` said so before the last record, or when the records asked for more work
  /// than any picture shows, which a warning tells.
  bool isComplete = true;
};

}  // namespace rasterkit
