#pragma once

#include <cstdint>

#include <rasterkit/drawing/ink/plane_affine.h>
#include <rasterkit/metafiles/records/dib_reader.h>

/// Helpers for blits that both players share.
namespace rasterkit::detail {

/// Returns whether an operation depends on the source: its truth table changes with the source's
/// bit.
constexpr bool NeedsSource(uint32_t rop) {
  const uint32_t table = rop >> 16 & 0xFF;
  return ((table >> 2 ^ table) & 0x33) != 0;
}

/// Converts a part to coordinates of the raster: parts of bottom-up bitmaps are counted from the
/// bottom row.
inline RectD FromFirstRow(const RectD& part, const Dib& dib) {
  if (dib.isTopDown) return part;
  const double height = dib.raster.Height();
  return {part.left, height - part.bottom, part.right, height - part.top};
}

/// Does the same for a record that holds only the rows from `firstRow` on of a larger bitmap.
inline RectD PartOfBand(const RectD& part, const Dib& dib, uint32_t firstRow) {
  const double first = firstRow;
  return FromFirstRow({part.left, part.top - first, part.right, part.bottom - first}, dib);
}

}  // namespace rasterkit::detail
