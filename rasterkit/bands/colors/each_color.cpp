#include <algorithm>
#include <array>
#include <vector>

#include <rasterkit/bands/colors/each_color.h>
#include <rasterkit/bands/colors/index_pixels.h>
#include <rasterkit/bands/colors/opacity_plane.h>

namespace rasterkit::detail {
namespace {

using Entries = std::vector<tagPALETTEENTRY>;

TBitmap ColumnOf(const Entries& entries, TColor bottom) {
  TBitmap column;
  column.ResetPixels(pf24bit, 1, static_cast<int>(entries.size()) + 1);
  const auto put = [&](int y, TColor color) {
    *reinterpret_cast<RGBrec*>(column.ScanLine(y)) = {static_cast<uint8_t>(color >> 16),
                                                      static_cast<uint8_t>(color >> 8),
                                                      static_cast<uint8_t>(color)};
  };
  for (size_t i = 0; i < entries.size(); ++i) put(static_cast<int>(i), EntryColor(entries[i]));
  put(static_cast<int>(entries.size()), bottom);
  return column;
}

tagPALETTEENTRY EntryOf(TColor color) {
  return {static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
          static_cast<uint8_t>(color >> 16), 0};
}

bool Has(const Entries& entries, TColor color) {
  return std::any_of(entries.begin(), entries.end(),
                     [&](const tagPALETTEENTRY& entry) { return EntryColor(entry) == color; });
}

/// Spreads the bits of a number over the low bits of blue, red and green: small numbers give small
/// color differences.
TColor SmallStep(unsigned number) {
  constexpr int kChannels[] = {16, 0, 8};
  TColor step = 0;
  for (int bit = 0; bit < 24; ++bit) {
    step |= static_cast<TColor>(number >> bit & 1) << (kChannels[bit % 3] + bit / 3);
  }
  return step;
}

/// Finds a color close to `wanted`. Transparent entries must not share a color with visible ones.
TColor Unused(const Entries& visible, TColor wanted) {
  unsigned number = 0;
  while (Has(visible, wanted ^ SmallStep(number))) ++number;
  return wanted ^ SmallStep(number);
}

bool IsGray(const tagPALETTEENTRY& entry) {
  return entry.peRed == entry.peGreen && entry.peRed == entry.peBlue;
}

/// An 8-bit gray picture stays gray: its indexes are its gray values.
void ChangeGrays(TBitmap& bitmap, const Entries& after) {
  std::array<uint8_t, 256> grays{};
  for (size_t i = 0; i < after.size(); ++i) grays[i] = after[i].peRed;
  ReplaceIndexes(bitmap, grays);
}

/// Gives the transparent entries a color that no other entry has.
void KeepHidden(TBitmap& bitmap, const Entries& before, Entries& after) {
  const TColor hidden = bitmap.TransparentColor();
  Entries visible;
  TColor wanted = clWhite;
  for (size_t i = 0; i < before.size(); ++i) {
    if (EntryColor(before[i]) == hidden) {
      wanted = EntryColor(after[i]);
    } else {
      visible.push_back(after[i]);
    }
  }
  const TColor replacement = Unused(visible, wanted);
  for (size_t i = 0; i < before.size(); ++i) {
    if (EntryColor(before[i]) == hidden) after[i] = EntryOf(replacement);
  }
  bitmap.SetTransparentColor(replacement);
}

void ChangePalette(TBitmap& bitmap, const PixelChange& change) {
  const HPALETTE palette = bitmap.Palette();
  const Entries before(palette.Entries().begin(), palette.Entries().end());
  TBitmap column = ColumnOf(before, bitmap.PixelColor(0, bitmap.Height() - 1));
  change(column);
  Entries after;
  for (size_t i = 0; i < before.size(); ++i) {
    after.push_back(EntryOf(column.PixelColor(0, static_cast<int>(i))));
  }
  if (bitmap.Transparent()) {
    KeepHidden(bitmap, before, after);
  } else if (IsGrayRamp(palette) && std::all_of(after.begin(), after.end(), IsGray)) {
    return ChangeGrays(bitmap, after);
  }
  bitmap.SetPalette(HPALETTE(after));
}

}  // namespace

void ChangeColors(TBitmap& bitmap, const PixelChange& change) {
  if (HasIndexes(bitmap)) return ChangePalette(bitmap, change);
  const AlphaPlane alphas(bitmap);
  bitmap.SetPixelFormat(pf24bit);
  change(bitmap);
  alphas.Restore(bitmap);
}

}  // namespace rasterkit::detail
