#include <cstring>

#include <rasterkit/codecs/rows/missing_rows.h>
#include <rasterkit/runtime/memory/page_release.h>

namespace rasterkit::detail {

namespace {

int WhitestEntry(const HPALETTE& palette) {
  int best = 0;
  int bestDistance = -1;
  for (int i = 0; i < palette.Count(); i++) {
    const tagPALETTEENTRY entry = palette.Entry(i);
    const int r = 255 - entry.peRed, g = 255 - entry.peGreen, b = 255 - entry.peBlue;
    const int distance = r * r + g * g + b * b;
    if (bestDistance < 0 || distance < bestDistance) {
      best = i;
      bestDistance = distance;
    }
  }
  return best;
}

}  // namespace

uint8_t WhiteByte(const Raster& raster) {
  if (!IsIndexed(raster.Format())) return 0xFF;
  const int entry = WhitestEntry(raster.palette);
  switch (raster.Format()) {
    case pf1bit:
      return entry == 0 ? 0x00 : 0xFF;
    case pf4bit:
      return static_cast<uint8_t>(entry * 0x11);
    default:
      return static_cast<uint8_t>(entry);
  }
}

void FillMissingRows(Raster& raster, int first) {
  const uint8_t white = WhiteByte(raster);
  for (int y = first; y < raster.Height(); y++) {
    std::memset(raster.Row(y), white, raster.RowBytes());
  }
}

void ClearRows(Raster& raster, int first, int end) {
  if (first >= end) return;
  ClearMemory(raster.Row(first), raster.Stride() * static_cast<size_t>(end - first));
}

}  // namespace rasterkit::detail
