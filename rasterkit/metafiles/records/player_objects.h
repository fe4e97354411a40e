#pragma once

#include <memory>
#include <variant>
#include <vector>

#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/metafiles/records/metafile_bytes.h>
#include <rasterkit/raster/palette.h>

/// What both players keep in their tables of objects.
namespace rasterkit::detail {

using PenObject = std::shared_ptr<const LogicalPen>;
using BrushObject = std::shared_ptr<const LogicalBrush>;
using FontObject = std::shared_ptr<const LogicalFont>;
/// Palettes alone may be changed after they were made, also while they are selected.
using PaletteObject = std::shared_ptr<HPALETTE>;
struct RegionObject {
  std::vector<RectD> rects;
};

/// The empty one is a handle that is taken by something that cannot be drawn with.
using MetafileObject =
    std::variant<std::monostate, PenObject, BrushObject, FontObject, PaletteObject, RegionObject>;

/// Objects that every device has, by their number: brushes, pens, fonts. Empty for other numbers.
MetafileObject StockObject(uint32_t number);

/// Selects pens, brushes and fonts; others leave the context alone.
void SelectObject(DeviceContext& context, const MetafileObject& object);

/// How a brush is stated: style, colour and number of its hatch.
BrushObject PlainBrush(uint32_t style, TColor color, uint32_t hatch);

/// A brush of a bitmap; of two colours only where `isMono`.
BrushObject PatternBrush(Raster bitmap, bool isMono);

/// A stated colour: 0x00BBGGRR, or an index into the palette where the top byte is 1.
TColor StatedColor(uint32_t stated, const HPALETTE& palette);

/// Entries of a palette: red, green, blue, flags. Throws FormatError when they are not there.
std::vector<tagPALETTEENTRY> ReadPaletteEntries(MetafileBytes& fields, size_t count);

/// Changes entries from `start` on; those beyond the palette stay away.
void ChangeEntries(HPALETTE& palette, size_t start, std::span<const tagPALETTEENTRY> changes);
/// The same for those entries alone that were made to be changed under way.
void AnimateEntries(HPALETTE& palette, size_t start, std::span<const tagPALETTEENTRY> changes);
/// New entries are black; there are 1 to 256.
void ResizePalette(HPALETTE& palette, size_t count);

}  // namespace rasterkit::detail
