#include <cstring>

#include <rasterkit/raster/cut_out.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

constexpr size_t kBitsOfByte = 8;

/// Combines two source bytes if the target byte begins inside a source byte.
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

void RequireInside(const Raster& source, const PixelRect& part) {
  if (part.left < 0 || part.top < 0 || part.right > source.Width() ||
      part.bottom > source.Height() || part.left > part.right || part.top > part.bottom) {
    throw RangeError("the rectangle to cut out does not lie inside the picture");
  }
}

}  // namespace

Raster CutOut(const Raster& source, const PixelRect& part) {
  RequireInside(source, part);
  Raster target(source.Format(), part.right - part.left, part.bottom - part.top);
  target.CopyProperties(source);
  if (target.Width() == 0) return target;
  const size_t firstBit = static_cast<size_t>(part.left) * StoredBitsPerPixel(source.Format());
  for (int y = 0; y < target.Height(); ++y) {
    CopyBits(source.Row(part.top + y), source.RowBytes(), firstBit, target.Row(y),
             target.RowBytes());
  }
  target.ClearPadding();
  return target;
}

}  // namespace rasterkit
