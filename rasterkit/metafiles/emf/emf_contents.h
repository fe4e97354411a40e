#pragma once

#include <rasterkit/metafiles/emf/emf_records.h>

namespace rasterkit::detail {

/// What an EMF file contains, without drawing it.
struct EmfContents {
  EmfHeader header;
  uint32_t records = 0;
  /// True if some record has a visible effect.
  bool hasDrawing = false;
  /// True if there are comments with EMF+ records, and if some of these have a visible effect.
  bool hasEmfPlus = false, hasEmfPlusDrawing = false;
  /// Why the walk ended before the last record; empty if it did not.
  std::string damage;
};

/// Throws FormatError if the first record is not a header.
EmfContents ReadEmfContents(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail
