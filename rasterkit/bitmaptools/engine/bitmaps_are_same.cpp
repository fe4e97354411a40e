#include <cstring>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/rows/equal_colors.h>

namespace rasterkit {
namespace {

/// In a file an undefined alpha byte is always 255.
bool IgnoresAlpha(const Raster& raster) {
  return raster.Format() == pf32bit && raster.alphaFormat == afIgnored;
}

/// Content of the file for the rows from `y` on, as far as they are contiguous in memory.
bool SameStoredRows(const Raster& a, const Raster& b, int y, int count) {
  const auto rows = static_cast<size_t>(count);
  if (IgnoresAlpha(a)) {
    return kernels::EqualColors32(a.Row(y), b.Row(y), static_cast<size_t>(a.Width()) * rows);
  }
  return std::memcmp(a.Row(y), b.Row(y), a.RowBytes() * rows) == 0;
}

bool SameRows(const Raster& a, const Raster& b) {
  if (a.RowBytes() == 0 || a.Height() == 0) return true;
  if (a.RowBytes() == a.Stride()) return SameStoredRows(a, b, 0, a.Height());
  for (int y = 0; y < a.Height(); ++y) {
    if (!SameStoredRows(a, b, y, 1)) return false;
  }
  return true;
}

}  // namespace

bool BitmapsAreSame(const TBitmap& a, const TBitmap& b) {
  if (a.Width() != b.Width() || a.Height() != b.Height()) return false;
  const Raster &first = a.Content(), &second = b.Content();
  // Equal headers mean equal formats, and so equal strides.
  return detail::BmpHead(first, BmpProfile::omit) == detail::BmpHead(second, BmpProfile::omit) &&
         SameRows(first, second);
}

}  // namespace rasterkit
