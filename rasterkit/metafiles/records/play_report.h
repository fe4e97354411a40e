#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace rasterkit {

/// The result of playing a metafile.
struct PlayReport {
  /// Number of records of known types, including those without a visible effect.
  uint32_t played = 0;
  /// Number of records that were skipped: damaged ones and those of unknown types.
  uint32_t skipped = 0;
  /// Reasons of skipped records and other damage, without duplicates, in the order of the records.
  std::vector<std::string> warnings;
  /// False if `keepGoing` stopped playback, or if the work budget was exceeded, which adds a
  /// warning.
  bool isComplete = true;
};

}  // namespace rasterkit
