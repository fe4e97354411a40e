#include <rasterkit/kernels/rows/move_bits.h>
#include <rasterkit/raster/cut_out.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

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
  const auto bits = static_cast<size_t>(StoredBitsPerPixel(source.Format()));
  const size_t firstBit = static_cast<size_t>(part.left) * bits;
  for (int y = 0; y < target.Height(); ++y) {
    kernels::MoveBits(source.Row(part.top + y), firstBit, target.Row(y), 0,
                      static_cast<size_t>(target.Width()) * bits);
  }
  target.ClearPadding();
  return target;
}

}  // namespace rasterkit
