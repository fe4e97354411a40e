#include <cstring>
#include <utility>

#include <rasterkit/bands/stage/band.h>
#include <rasterkit/kernels/rows/move_bits.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

void CopyRows(const Raster& source, const BandRect& part, Raster& target, int left, int top) {
  const auto bits = static_cast<size_t>(StoredBitsPerPixel(source.Format()));
  const auto width = static_cast<size_t>(part.width);
  const bool reachesEdge = left + part.width == target.Width();
  for (int y = 0; y < part.height; ++y) {
    const uint8_t* from = source.Row(part.top + y);
    uint8_t* to = target.Row(top + y);
    kernels::MoveBits(from, bits * static_cast<size_t>(part.left), to,
                      bits * static_cast<size_t>(left), bits * width);
    if (!reachesEdge) continue;
    const size_t used = bits * static_cast<size_t>(target.Width());
    if (used % 8 != 0) to[used / 8] &= static_cast<uint8_t>(0xFF00u >> (used % 8));
    std::memset(to + target.RowBytes(), 0, target.Stride() - target.RowBytes());
  }
}

void CopySamples(const Samples& source, const BandRect& part, Samples& target, int left, int top) {
  const size_t bytes = source.PixelBytes(), count = bytes * static_cast<size_t>(part.width);
  for (int plane = 0; plane < source.Planes(); ++plane) {
    for (int y = 0; y < part.height; ++y) {
      std::memcpy(target.Row(top + y, plane) + bytes * static_cast<size_t>(left),
                  source.Row(part.top + y, plane) + bytes * static_cast<size_t>(part.left), count);
    }
  }
}

bool IsInside(const BandRect& part, const BandRect& all) {
  return part.left >= all.left && part.top >= all.top && part.width >= 0 && part.height >= 0 &&
         part.width <= all.width - (part.left - all.left) &&
         part.height <= all.height - (part.top - all.top);
}

}  // namespace

void CopyPart(const Pixels& source, const BandRect& part, Pixels& target, int left, int top) {
  const BandRect place{left, top, part.width, part.height};
  if (!IsInside(part, {0, 0, WidthOf(source), HeightOf(source)}) ||
      !IsInside(place, {0, 0, WidthOf(target), HeightOf(target)})) {
    throw RangeError("a part of a picture must lie inside of it");
  }
  if (const auto* samples = std::get_if<Samples>(&source)) {
    return CopySamples(*samples, part, std::get<Samples>(target), left, top);
  }
  CopyRows(std::get<Raster>(source), part, std::get<Raster>(target), left, top);
}

Band CutBand(const Band& band, const BandRect& rect) {
  if (!IsInside(rect, band.Rect())) {
    throw RangeError("a part of a band must lie inside of it");
  }
  Band cut{NewPixels(band.pixels, rect.width, rect.height), rect.left, rect.top};
  CopyPart(band.pixels, {rect.left - band.left, rect.top - band.top, rect.width, rect.height},
           cut.pixels, 0, 0);
  return cut;
}

}  // namespace rasterkit
