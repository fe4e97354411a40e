#include <algorithm>
#include <numeric>
#include <optional>
#include <vector>

#include <rasterkit/bitmaptools/pixels/transparency.h>

#include "tool/pictures/palette_indexes.h"
#include "tool/verbs/picture_verb.h"

namespace rasterkit::tool {
namespace {

using Entries = std::vector<tagPALETTEENTRY>;

constexpr tagPALETTEENTRY kWhite = {255, 255, 255, 0};

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

/// Swaps white with the last entry and updates the pixels, so that no other pixel looks different.
/// The library's routine supports only palettes of 16 and 256 entries, and handles two 4-bit pixels
/// as one.
bool WhitenPalette(TBitmap& bitmap) {
  const HPALETTE palette = bitmap.Palette();
  Entries entries(palette.Entries().begin(), palette.Entries().end());
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

void PrepareForPdf(TBitmap& bitmap) {
  if (HasIndexes(bitmap) && WhitenPalette(bitmap)) return;
  // A full palette without white has no room for it, and the library's routine does not support
  // 15-bit pixels.
  if (HasIndexes(bitmap) || bitmap.PixelFormat() == pf15bit) bitmap.SetPixelFormat(pf24bit);
  CheckTransColForPDF(&bitmap);
}

}  // namespace

VerbRunner AddPdfWhiteVerb(CommandLine& line) {
  PictureVerb verb(
      line,
      {"pdf-white",
       "make white the transparent color of PDF exports",
       {"PDF exports treat the color of the bottom left pixel as transparent. That pixel becomes "
        "white; in a palette white also becomes the last entry. No other pixel looks different."},
       {"rasterkit pdf-white plan.png plan-for-pdf.png"}});
  return verb.Changing([](Subject& picture) { PrepareForPdf(*picture.bitmap); });
}

}  // namespace rasterkit::tool
