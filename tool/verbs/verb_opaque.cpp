#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tool/arguments/color_argument.h"
#include "tool/pictures/alpha_channel.h"
#include "tool/pictures/palette_indexes.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// Keeps the palette and its depth: transparent entries get the background color.
void PaintKeyEntries(TBitmap& bitmap, TColor background) {
  const TColor key = bitmap.TransparentColor();
  TColorTable table = PaletteTable(bitmap.Palette());
  for (tagPALETTEENTRY& entry : table) {
    if (EntryColor(entry) == key) {
      entry = {static_cast<uint8_t>(background), static_cast<uint8_t>(background >> 8),
               static_cast<uint8_t>(background >> 16), entry.peFlags};
    }
  }
  const auto count = static_cast<size_t>(bitmap.Palette().Count());
  bitmap.SetPalette(HPALETTE(std::span(table).first(count)));
  bitmap.SetTransparent(false);
}

void MakeOpaque(Subject& picture) {
  TBitmap& bitmap = *picture.bitmap;
  const TColor background = ColorOf(picture.options.background);
  if (!HasTransparency(bitmap)) return;
  if (HasIndexes(bitmap)) return PaintKeyEntries(bitmap, background);
  // For white, ResetTransparent handles fully transparent pixels; the rest is blended.
  bitmap.SetTransparent(true);
  if (background == clWhite) ResetTransparent(bitmap);
  DropTransparency(picture.bitmap, background);
}

}  // namespace

VerbRunner AddOpaqueVerb(CommandLine& line) {
  PictureVerb verb(line, {"opaque",
                          "paint transparent parts with the background color",
                          {"Transparent pixels get the background color. Partly transparent "
                           "pixels are blended with it."},
                          {"rasterkit opaque logo.png on-white.png",
                           "rasterkit opaque logo.png on-gray.png --background C0C0C0"}});
  return verb.Changing(MakeOpaque);
}

}  // namespace rasterkit::tool
