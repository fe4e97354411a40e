#include <cstring>
#include <limits>
#include <vector>

#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/bands/colors/wider_rows.h>
#include <rasterkit/kernels/rows/packed_pixels.h>

namespace rasterkit::detail {
namespace {

constexpr int kMostEntries = 256;

/// The bytes of full opacity.
std::vector<uint8_t> OpaqueBytes(NumberType type) {
  return WithNumberType(type, [](auto zero) {
    using T = decltype(zero);
    T opaque;
    if constexpr (std::is_integral_v<T>) {
      opaque = std::numeric_limits<T>::max();
    } else {
      opaque = NumberOf<T>(1);
    }
    const auto* first = reinterpret_cast<const uint8_t*>(&opaque);
    return std::vector<uint8_t>(first, first + sizeof opaque);
  });
}

void FillPixels(uint8_t* row, int width, const std::vector<uint8_t>& pixel, size_t step) {
  for (int x = 0; x < width; ++x, row += step) std::memcpy(row, pixel.data(), pixel.size());
}

}  // namespace

Raster Widened(const Raster& raster, TPixelFormat format) {
  Raster target(format, raster.Width(), raster.Height());
  target.CopyProperties(raster);
  const int from = StoredBitsPerPixel(raster.Format()), to = StoredBitsPerPixel(format);
  std::vector<uint8_t> indexes(static_cast<size_t>(raster.Width()));
  for (int y = 0; y < raster.Height(); ++y) {
    kernels::UnpackPixels(raster.Row(y), from, 0, raster.Width(), indexes.data());
    if (to < 8) {
      kernels::PackPixels(indexes.data(), to, 0, raster.Width(), target.Row(y));
    } else {
      std::memcpy(target.Row(y), indexes.data(), indexes.size());
    }
  }
  target.ClearPadding();
  return target;
}

bool FitsOneMoreEntry(const Raster& raster) {
  return IsIndexed(raster.Format()) && raster.palette.Count() < kMostEntries;
}

void MakeRoomForEntry(Raster& raster) {
  const int bits = StoredBitsPerPixel(raster.Format());
  if (bits > 8 || raster.palette.Count() < 1 << bits) return;
  raster = Widened(raster, raster.Format() == pf1bit ? pf4bit : pf8bit);
}

Samples WithAlphaBand(const Samples& samples) {
  PixelLayout layout = samples.Layout();
  ++layout.bands;
  layout.alpha = AlphaKind::straight;
  const bool inPlanes = samples.Planes() > 1;
  Samples target(layout, samples.Width(), samples.Height(), inPlanes);
  target.resolution = samples.resolution;
  const std::vector<uint8_t> opaque = OpaqueBytes(layout.type);
  for (int y = 0; y < samples.Height(); ++y) {
    if (inPlanes) {
      for (int plane = 0; plane < samples.Planes(); ++plane) {
        std::memcpy(target.Row(y, plane), samples.Row(y, plane), samples.Stride());
      }
      FillPixels(target.Row(y, samples.Planes()), target.Width(), opaque, opaque.size());
      continue;
    }
    for (int x = 0; x < samples.Width(); ++x) {
      std::memcpy(target.Row(y) + static_cast<size_t>(x) * target.PixelBytes(),
                  samples.Row(y) + static_cast<size_t>(x) * samples.PixelBytes(),
                  samples.PixelBytes());
    }
    FillPixels(target.Row(y) + samples.PixelBytes(), target.Width(), opaque, target.PixelBytes());
  }
  return target;
}

}  // namespace rasterkit::detail
