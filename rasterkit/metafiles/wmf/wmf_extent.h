#pragma once

#include <rasterkit/drawing/ink/plane_affine.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>

namespace rasterkit::detail {

/// What a WMF file contains, without drawing it.
struct WmfContents {
  std::optional<WmfPlacement> placement;
  /// Origin and extent of the first window that the records set, in logical units. The extent may
  /// be negative, but is not 0.
  std::optional<PointD> windowOrg, windowExt;
  /// From the first mapping mode with a fixed unit; 0 without one.
  double unitsPerInch = 0;
  uint32_t records = 0;
  /// Why the walk ended before the last record; empty if it did not.
  std::string damage;
};

/// Throws FormatError if the data does not start with a WMF header.
WmfContents ReadWmfContents(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail
