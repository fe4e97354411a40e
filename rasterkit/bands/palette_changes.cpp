#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/bands/color_changes.h>
#include <rasterkit/bands/colors/index_pixels.h>
#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Entries = std::vector<tagPALETTEENTRY>;

constexpr tagPALETTEENTRY kWhite = {255, 255, 255, 0};

Entries EntriesOf(const TBitmap& bitmap) {
  const HPALETTE palette = bitmap.Palette();
  return {palette.Entries().begin(), palette.Entries().end()};
}

/// Finds the last white entry, or else makes one: at the end, or in place of an unused entry.
std::optional<size_t> PlaceOfWhite(const TBitmap& bitmap, Entries& entries) {
  for (size_t i = entries.size(); i-- > 0;) {
    if (EntryColor(entries[i]) == clWhite) return i;
  }
  const auto counts = CountIndexes(bitmap);
  const auto most = static_cast<size_t>(MostEntries(bitmap));
  if (entries.size() < most && counts[entries.size()] == 0) {
    entries.push_back(kWhite);
    return entries.size() - 1;
  }
  for (size_t i = entries.size(); i-- > 0;) {
    if (counts[i] == 0) {
      entries[i] = kWhite;
      return i;
    }
  }
  return std::nullopt;
}

void SetEntry(Entries& entries, int index, TColor color) {
  if (index < 0 || static_cast<size_t>(index) >= entries.size()) {
    throw RangeError("there is no entry " + std::to_string(index) + ": the palette has " +
                     std::to_string(entries.size()));
  }
  tagPALETTEENTRY& entry = entries[static_cast<size_t>(index)];
  entry.peRed = static_cast<uint8_t>(color);
  entry.peGreen = static_cast<uint8_t>(color >> 8);
  entry.peBlue = static_cast<uint8_t>(color >> 16);
}

bool Has(const Entries& entries, TColor color) {
  for (const tagPALETTEENTRY& entry : entries) {
    if (EntryColor(entry) == color) return true;
  }
  return false;
}

}  // namespace

// White is swapped with the last entry and the pixels are updated. The library's routine supports
// only palettes of 16 and 256 entries, and handles two 4-bit pixels as one.
bool PutWhiteLast(TBitmap& bitmap) {
  Entries entries = EntriesOf(bitmap);
  const auto white = PlaceOfWhite(bitmap, entries);
  if (!white) return false;
  const size_t last = entries.size() - 1;
  std::array<uint8_t, 256> places{};
  std::iota(places.begin(), places.end(), static_cast<uint8_t>(0));
  std::swap(places[*white], places[last]);
  std::swap(entries[*white], entries[last]);
  if (*white != last) ReplaceIndexes(bitmap, places);
  bitmap.SetPalette(HPALETTE(entries));
  SetIndexAt(bitmap, 0, bitmap.Height() - 1, static_cast<int>(last));
  return true;
}

void Change(const SetPaletteEntries& change, BitmapPointer& bitmap) {
  if (!HasIndexes(*bitmap)) {
    throw FormatError("a " + std::to_string(bitmap->StoredBits()) +
                      "-bit picture has no palette (convert --bits 8 creates one)");
  }
  const TColor transparent = bitmap->TransparentColor();
  Entries entries = EntriesOf(*bitmap);
  if (change.first) SetEntry(entries, IndexAt(*bitmap, 0, 0), *change.first);
  for (const auto& [index, color] : change.entries) SetEntry(entries, index, color);
  bitmap->SetPalette(HPALETTE(entries));
  if (!bitmap->Transparent()) return;
  // If no entry has the color after the change, no pixel is transparent.
  if (Has(entries, transparent)) return bitmap->SetTransparentColor(transparent);
  bitmap->SetTransparent(false);
}

void Change(const UsePalette& change, BitmapPointer& bitmap) {
  if (HasTransparency(*bitmap)) DropTransparency(bitmap, clWhite);
  auto made = std::make_unique<TBitmap>();
  made->ResetPixels(pf8bit, bitmap->Width(), bitmap->Height());
  made->CarryFrom(
      *bitmap, {.palette = false, .alphaFormat = false, .transparency = CarriedTransparency::none});
  made->SetPalette(change.palette);
  made->Canvas().StretchMode = smPlain;
  made->Canvas().CopyStretched({0, 0, bitmap->Width(), bitmap->Height()}, *bitmap);
  bitmap = std::move(made);
}

}  // namespace rasterkit::detail
