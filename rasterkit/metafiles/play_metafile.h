#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

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

/// Draws a metafile so that its picture fills `place`; mirrored where right lies before left or
/// bottom above top. What the metafile does not paint keeps its colour.
///
/// `target` has 32 bits; nothing outside `place` is touched, and all of it gets alpha 255.
/// `keepGoing` is asked now and then, when there is one, and ends the drawing by answering false.
/// Throws FormatError for bytes that are no metafile, UnsupportedError for one whose drawing is in
/// records of the newer kind ("EMF+") alone.
RASTERKIT_EXPORT PlayReport PlayMetafile(std::span<const uint8_t> bytes, Raster& target,
                                         const PixelRect& place,
                                         const std::function<bool()>& keepGoing = {});

}  // namespace rasterkit
