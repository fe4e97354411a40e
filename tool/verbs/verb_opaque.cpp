#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tool/pictures/entry_rows.h"
#include "tool/pictures/transparency.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

/// A palette keeps its depth: its transparent entries get the colour.
void PaintKeyEntries(TBitmap& bitmap, TColor background) {
  const TColor key = bitmap.TransparentColor();
  TColorTable table = PaletteTable(bitmap.Palette());
  for (tagPALETTEENTRY& entry : table)
    if (EntryColor(entry) == key)
      entry = {static_cast<uint8_t>(background), static_cast<uint8_t>(background >> 8),
               static_cast<uint8_t>(background >> 16), entry.peFlags};
  const auto count = static_cast<size_t>(bitmap.Palette().Count());
  bitmap.SetPalette(HPALETTE(std::span(table).first(count)));
  bitmap.SetTransparent(false);
}

void MakeOpaque(Subject& picture) {
  TBitmap& bitmap = *picture.bitmap;
  const TColor background = ColorOf(picture.options.background);
  if (!HasTransparency(bitmap)) return;
  if (HasIndexes(bitmap)) return PaintKeyEntries(bitmap, background);
  // On white the library's routine does it for what is wholly transparent; the rest is blended.
  bitmap.SetTransparent(true);
  if (background == clWhite) ResetTransparent(bitmap);
  DropTransparency(picture.bitmap, background);
}

}  // namespace

VerbRunner AddOpaqueVerb(CLI::App& app) {
  PictureVerb verb(app, "opaque", "paint what is transparent",
                   "Transparent pixels get the background colour, partly transparent ones are "
                   "blended with it.\n\n"
                   "Examples:\n"
                   "  rasterkit opaque logo.png on-white.png\n"
                   "  rasterkit opaque logo.png on-gray.png --background C0C0C0");
  return verb.Changing(MakeOpaque);
}

}  // namespace rasterkit::tool
