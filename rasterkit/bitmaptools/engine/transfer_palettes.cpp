#include <algorithm>
#include <cstdlib>

#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/transfer_palettes.h>

namespace rasterkit::detail {
namespace {

tagPALETTEENTRY EntryOf(const TColorTable* table, uint8_t index) {
  return table != nullptr ? (*table)[index] : tagPALETTEENTRY{};
}

int Distance(const tagPALETTEENTRY& a, const tagPALETTEENTRY& b) {
  return std::max({std::abs(a.peRed - b.peRed), std::abs(a.peGreen - b.peGreen),
                   std::abs(a.peBlue - b.peBlue)});
}

bool IsNearWhite(const TPixelThread& worker, const tagPALETTEENTRY& entry) {
  return std::min({entry.peRed, entry.peGreen, entry.peBlue}) > worker.FromGrayVal;
}

}  // namespace

uint8_t MappedIndex(const TPixelThread& worker, uint8_t index) {
  if (index >= worker.SrcAnz) return index;
  const tagPALETTEENTRY color = EntryOf(worker.SrcCol, index);
  int least = 255;
  if (index < worker.TarAnz) least = Distance(color, EntryOf(worker.TarCol, index));
  if (least == 0) return index;
  int32_t nearest = index;
  for (int32_t j = 0; j < worker.TarAnz; ++j) {
    const int distance = Distance(color, EntryOf(worker.TarCol, static_cast<uint8_t>(j)));
    if (distance >= least) continue;
    least = distance;
    nearest = j;
  }
  return static_cast<uint8_t>(nearest);
}

bool IsWhiteSourceIndex(const TPixelThread& worker, uint8_t index) {
  if (worker.nSrcBytes == 1) return IsNearWhite(worker, EntryOf(worker.SrcCol, index));
  if (worker.nSrcBit == 4) return index == worker.SrcWhite || index == worker.SrcLastWhite;
  return (index != 0) != worker.SrcInv;
}

bool IsWhiteTargetIndex(const TPixelThread& worker, uint8_t index) {
  const tagPALETTEENTRY entry = EntryOf(worker.TarCol, index);
  if (worker.UseGray) return IsNearWhite(worker, entry);
  return entry.peRed == worker.transR && entry.peGreen == worker.TransG &&
         entry.peBlue == worker.transB;
}

std::array<uint8_t, 1024> SourceColors(const TPixelThread& worker) {
  std::array<uint8_t, 1024> colors{};
  for (size_t i = 0; i < 256; ++i) {
    const tagPALETTEENTRY entry = EntryOf(worker.SrcCol, static_cast<uint8_t>(i));
    colors[4 * i] = entry.peBlue;
    colors[4 * i + 1] = entry.peGreen;
    colors[4 * i + 2] = entry.peRed;
  }
  return colors;
}

}  // namespace rasterkit::detail
