#pragma once

#include <cstdint>

#include <rasterkit/drawing/ink/affine.h>
#include <rasterkit/metafiles/records/dib_reader.h>

/// What the players of both kinds of metafiles have to know about blits.
namespace rasterkit::detail {

/// Whether an operation looks at the source: whether the halves of its truth table that differ in
/// the source's bit differ.
constexpr bool NeedsSource(uint32_t rop) {
  const uint32_t table = rop >> 16 & 0xFF;
  return ((table >> 2 ^ table) & 0x33) != 0;
}

/// Parts of bitmaps whose rows run upward are counted from the lowest row; rasters from the
/// uppermost one.
inline RectD FromFirstRow(const RectD& part, const Dib& dib) {
  if (dib.isTopDown) return part;
  const double height = dib.raster.Height();
  return {part.left, height - part.bottom, part.right, height - part.top};
}

/// The same where the record holds the rows from `firstRow` on of a larger bitmap.
inline RectD PartOfBand(const RectD& part, const Dib& dib, uint32_t firstRow) {
  const double first = firstRow;
  return FromFirstRow({part.left, part.top - first, part.right, part.bottom - first}, dib);
}

}  // namespace rasterkit::detail
