#include <algorithm>
#include <memory>

#include <rasterkit/bitmaptools/pixels/palette_entries.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/bitmaptools/rotation/rotation_background.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::detail {
namespace {

constexpr tagPALETTEENTRY kNearWhiteEntry{254, 255, 255, 0};
constexpr TColor kNearWhite = RGB(254, 255, 255);

TColor ColorOf(const tagPALETTEENTRY& entry) {
  return RGB(entry.peRed, entry.peGreen, entry.peBlue);
}

// A bitmap that was 1-bit needs one black and one white entry. The first entry that is neither the
// first black nor the first white is free.
void PutNearWhiteOverSpareEntry(TColorTable& entries, int32_t count) {
  int blacks = 0, whites = 0;
  for (int32_t i = 0; i < count; ++i) {
    const TColor color = ColorOf(entries[static_cast<size_t>(i)]);
    const bool isFirst = (color == clBlack && ++blacks == 1) || (color == clWhite && ++whites == 1);
    if (isFirst) continue;
    entries[static_cast<size_t>(i)] = kNearWhiteEntry;
    return;
  }
}

TColor LargestColorBelowWhite(const TColorTable& entries, int32_t count) {
  TColor largest = 0;
  for (int32_t i = 0; i < count; ++i) {
    const TColor color = ColorOf(entries[static_cast<size_t>(i)]);
    if (color < clWhite) largest = std::max(largest, color);
  }
  return largest;
}

TColor ChooseFromPalette(const RotationTask& task) {
  std::unique_ptr<TColorTable> entries;
  const int32_t count = GetPaletteColors(task.target.Palette(), entries);
  if (!entries) entries = std::make_unique<TColorTable>();
  const int32_t room = task.bytesPerPixel == 1 ? 256 : task.bitsPerPixel == 4 ? 16 : 0;
  if (count < room) {
    task.target.SetPalette(CreatePaletteWithColor(*entries, count, kNearWhiteEntry.peRed,
                                                  kNearWhiteEntry.peGreen, kNearWhiteEntry.peBlue));
    return kNearWhite;
  }
  if (task.wasMono) {
    PutNearWhiteOverSpareEntry(*entries, count);
    task.target.SetPalette(CreateColorPalette(*entries, count));
    return kNearWhite;
  }
  return LargestColorBelowWhite(*entries, count);
}

}  // namespace

TColor ChooseBackground(const RotationTask& task) {
  const TColor color = task.bytesPerPixel > 1 ? kNearWhite : ChooseFromPalette(task);
  task.target.SetTransparent(true);
  task.target.SetTransparentColor(color);
  return color;
}

}  // namespace rasterkit::detail
