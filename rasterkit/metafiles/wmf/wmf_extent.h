#pragma once

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>

namespace rasterkit::detail {

/// What a Windows metafile holds, counted and not drawn.
struct WmfContents {
  std::optional<WmfPlacement> placement;
  /// Where the first window that the records set begins, and how large it is: logical units. It may
  /// be upside down, but is not empty.
  std::optional<PointD> windowOrg, windowExt;
  /// What the first mapping mode with a fixed unit says; 0 for the others.
  double unitsPerInch = 0;
  uint32_t records = 0;
  /// Why the walk ended before the last record; empty when it did not.
  std::string damage;
};

/// Throws FormatError when the bytes do not start with a header.
WmfContents ReadWmfContents(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail
