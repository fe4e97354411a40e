#include <rasterkit/bands/colors/each_color.h>
#include <rasterkit/bands/colors/entry_changes.h>
#include <rasterkit/bands/colors/index_pixels.h>

namespace rasterkit::detail {

std::optional<EntryColors> ChangedEntries(const TBitmap& before, const TBitmap& after) {
  EntryColors colors(static_cast<size_t>(MostEntries(before)));
  for (int y = 0; y < before.Height(); ++y) {
    const auto* const row = reinterpret_cast<const RGBrec*>(after.ScanLine(y));
    for (int x = 0; x < before.Width(); ++x) {
      const TColor color = RGB(row[x].r, row[x].g, row[x].b);
      std::optional<TColor>& known = colors[static_cast<size_t>(IndexAt(before, x, y))];
      if (!known) known = color;
      if (*known != color) return std::nullopt;
    }
  }
  return colors;
}

void SetEntryColors(TBitmap& bitmap, const EntryColors& colors) {
  ChangeColors(bitmap, [&colors](TBitmap& column) {
    for (int i = 0; i < column.Height() - 1; ++i) {
      const std::optional<TColor>& color = colors[static_cast<size_t>(i)];
      if (!color) continue;
      *reinterpret_cast<RGBrec*>(column.ScanLine(i)) = {static_cast<uint8_t>(*color >> 16),
                                                        static_cast<uint8_t>(*color >> 8),
                                                        static_cast<uint8_t>(*color)};
    }
  });
}

}  // namespace rasterkit::detail
