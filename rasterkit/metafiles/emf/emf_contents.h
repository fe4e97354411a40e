#pragma once

#include <rasterkit/metafiles/emf/emf_records.h>

namespace rasterkit::detail {

/// What an enhanced metafile holds, counted and not drawn.
struct EmfContents {
  EmfHeader header;
  uint32_t records = 0;
  /// Records that leave something to be seen.
  bool hasDrawing = false;
  /// Comments with records of the newer kind, and such that leave something to be seen.
  bool hasEmfPlus = false, hasEmfPlusDrawing = false;
  /// Why the walk ended before the last record; empty when it did not.
  std::string damage;
};

/// Throws FormatError when the first record is no header.
EmfContents ReadEmfContents(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail
