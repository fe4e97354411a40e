#pragma once

#include <memory>
#include <variant>
#include <vector>

#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>
#include <rasterkit/raster/palette.h>

/// The objects in the handle tables of both players.
namespace rasterkit::detail {

using PenObject = std::shared_ptr<const LogicalPen>;
using BrushObject = std::shared_ptr<const LogicalBrush>;
using FontObject = std::shared_ptr<const LogicalFont>;
/// Only palettes may change after they were created, even while they are selected.
using PaletteObject = std::shared_ptr<HPALETTE>;
struct RegionObject {
  std::vector<RectD> rects;
};

/// std::monostate means that the handle is in use, but its object cannot be drawn with.
using MetafileObject =
    std::variant<std::monostate, PenObject, BrushObject, FontObject, PaletteObject, RegionObject>;

/// Returns the stock object of that number: a brush, pen or font. Empty for other numbers.
MetafileObject StockObject(uint32_t number);

/// Selects a pen, brush or font; a no-op for other objects.
void SelectObject(DeviceContext& context, const MetafileObject& object);

/// Creates a brush from its stored style, color and hatch number.
BrushObject PlainBrush(uint32_t style, TColor color, uint32_t hatch);

/// Creates a brush from a bitmap; with `isMono`, a 1-bit bitmap takes the text colors.
BrushObject PatternBrush(Raster bitmap, bool isMono);

/// Converts a stored color: 0x00BBGGRR, or an index into the palette if the high byte is 1.
TColor StatedColor(uint32_t stated, const HPALETTE& palette);

/// Reads palette entries: red, green, blue, flags. Throws FormatError if they are truncated.
std::vector<tagPALETTEENTRY> ReadPaletteEntries(MetafileBytes& fields, size_t count);

/// Replaces entries from `start` on; changes beyond the end of the palette are ignored.
void ChangeEntries(HPALETTE& palette, size_t start, std::span<const tagPALETTEENTRY> changes);
/// Does the same, but only for entries that were created with the animation flag.
void AnimateEntries(HPALETTE& palette, size_t start, std::span<const tagPALETTEENTRY> changes);
/// Resizes a palette to 1 to 256 entries; new entries are black.
void ResizePalette(HPALETTE& palette, size_t count);

}  // namespace rasterkit::detail
