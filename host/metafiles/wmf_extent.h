#pragma once

#include <rasterkit/host/metafiles/wmf_records.h>

namespace rasterkit::detail {

/// A box in logical units; it may be upside down.
struct WmfExtent {
  int left = 0, top = 0, right = 0, bottom = 0;
};

/// What a Windows metafile holds, counted and not drawn.
struct WmfContents {
  std::optional<WmfPlacement> placement;
  /// The first window that the records set, else the box of the coordinates that they draw at (and
  /// 1 unit where there are none).
  WmfExtent extent;
  /// What the first mapping mode with a fixed unit says; 0 for the others.
  double unitsPerInch = 0;
  uint32_t records = 0;
  /// Why the walk ended before the last record; empty when it did not.
  std::string damage;
};

/// Throws FormatError when the bytes do not start with a header.
WmfContents ReadWmfContents(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail
