#include "apps/rasterkit/crop_rows.h"

#include <cstring>

namespace rasterkit::tool {
namespace {

constexpr size_t kBitsOfByte = 8;

/// Bytes that begin inside a byte of the source row are put together from two neighbours.
void CopyBits(const uint8_t* source, size_t sourceBytes, size_t firstBit, uint8_t* target,
              size_t targetBytes) {
  const uint8_t* const first = source + firstBit / kBitsOfByte;
  const size_t shift = firstBit % kBitsOfByte;
  if (shift == 0) {
    std::memcpy(target, first, targetBytes);
    return;
  }
  const auto available = static_cast<size_t>(source + sourceBytes - first);
  for (size_t i = 0; i < targetBytes; ++i) {
    const unsigned next = i + 1 < available ? first[i + 1] : 0;
    target[i] = static_cast<uint8_t>(first[i] << shift | next >> (kBitsOfByte - shift));
  }
}

/// An automatic transparent colour would follow another corner pixel.
void FixTransparentColor(TBitmap& bitmap) {
  if (bitmap.Transparent()) bitmap.SetTransparentColor(bitmap.TransparentColor());
}

}  // namespace

void Crop(TBitmap& bitmap, const TRect& rect) {
  FixTransparentColor(bitmap);
  const Raster& source = bitmap.Content();
  Raster target(source.Format(), rect.Right - rect.Left, rect.Bottom - rect.Top);
  target.CopyProperties(source);
  const size_t firstBit = static_cast<size_t>(rect.Left) * StoredBitsPerPixel(source.Format());
  for (int y = 0; y < target.Height(); ++y)
    CopyBits(source.Row(rect.Top + y), source.RowBytes(), firstBit, target.Row(y),
             target.RowBytes());
  target.ClearPadding();
  TBitmap cut(std::move(target));
  cut.AssignTransparency(bitmap);
  bitmap = std::move(cut);
}

}  // namespace rasterkit::tool
