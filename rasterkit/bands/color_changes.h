#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include <rasterkit/bands/color_change.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

/// The changes of color, each with the rules that people expect: palettes keep their depth, and
/// transparency is kept. Small bitmaps go through them, which show what becomes of a kind of pixels
/// (see BeginChange).
namespace rasterkit::detail {

using BitmapPointer = std::unique_ptr<TBitmap>;

void Change(const MakeGray& change, BitmapPointer& bitmap);
/// Transparent parts are painted white first. The threshold must be settled.
void Change(const MakeMono& change, BitmapPointer& bitmap);
void Change(const AdjustColors& change, BitmapPointer& bitmap);
void Change(const WhitenLight& change, BitmapPointer& bitmap);
void Change(const RecolorByGray& change, BitmapPointer& bitmap);
void Change(const ReplaceKeyColor& change, BitmapPointer& bitmap);
void Change(const WhiteForPdf& change, BitmapPointer& bitmap);
void Change(const PaintTransparency& change, BitmapPointer& bitmap);
/// Throws FormatError without transparency.
void Change(const SwapOpacity& change, BitmapPointer& bitmap);
/// Throws FormatError without a palette, RangeError for an entry that it does not have.
void Change(const SetPaletteEntries& change, BitmapPointer& bitmap);
/// An alpha channel that the depth does not have is painted onto white first.
void Change(const SetBits& change, BitmapPointer& bitmap);
void Change(const UsePalette& change, BitmapPointer& bitmap);

/// Puts white into the palette of an indexed bitmap as its last entry, and into the bottom left
/// pixel, so that no other pixel looks different. False if the palette has no room for it.
bool PutWhiteLast(TBitmap& bitmap);

/// The threshold of Otsu's rule for counts of gray values: the lowest gray value that counts as
/// light. If no pixel lies between equally good ones, the middle of the first such run; 128 if all
/// pixels have one gray value. At most 2^48 pixels.
RASTERKIT_EXPORT int OtsuThreshold(const std::array<uint64_t, 256>& counts);

}  // namespace rasterkit::detail
