#include <algorithm>

#include <rasterkit/metafiles/records/player_objects.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kMostEntries = 256;

std::vector<tagPALETTEENTRY> CopyOf(const HPALETTE& palette) {
  return {palette.Entries().begin(), palette.Entries().end()};
}

}  // namespace

TColor StatedColor(uint32_t stated, const HPALETTE& palette) {
  constexpr uint32_t kIndex = 1;
  if (stated >> 24 == kIndex) {
    return EntryColor(palette.Entry(static_cast<int>(stated & 0xFFFF)));
  }
  return static_cast<TColor>(stated & 0xFFFFFF);
}

std::vector<tagPALETTEENTRY> ReadPaletteEntries(MetafileBytes& fields, size_t count) {
  std::vector<tagPALETTEENTRY> entries(fields.Count(count, 4));
  for (tagPALETTEENTRY& entry : entries) {
    const auto bytes = fields.Take(4);
    entry = {bytes[0], bytes[1], bytes[2], bytes[3]};
  }
  return entries;
}

void ChangeEntries(HPALETTE& palette, size_t start, std::span<const tagPALETTEENTRY> changes) {
  std::vector<tagPALETTEENTRY> entries = CopyOf(palette);
  if (start >= entries.size()) return;
  const size_t count = std::min(changes.size(), entries.size() - start);
  std::copy_n(changes.begin(), count, entries.begin() + static_cast<ptrdiff_t>(start));
  palette = HPALETTE(entries);
}

void AnimateEntries(HPALETTE& palette, size_t start, std::span<const tagPALETTEENTRY> changes) {
  constexpr uint8_t kIsAnimated = 1;
  std::vector<tagPALETTEENTRY> entries = CopyOf(palette);
  for (size_t i = 0; i < changes.size() && start + i < entries.size(); ++i) {
    tagPALETTEENTRY& entry = entries[start + i];
    if ((entry.peFlags & kIsAnimated) != 0) entry = changes[i];
  }
  palette = HPALETTE(entries);
}

void ResizePalette(HPALETTE& palette, size_t count) {
  std::vector<tagPALETTEENTRY> entries = CopyOf(palette);
  entries.resize(std::clamp<size_t>(count, 1, kMostEntries));
  palette = HPALETTE(entries);
}

}  // namespace rasterkit::detail
