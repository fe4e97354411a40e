#include <algorithm>
#include <cstring>

#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/pixel_words.h>

namespace rasterkit {
namespace {

// Sets bits `first` to `last - 1` of a row (bit 0 is the first pixel) to the bits of `pattern`,
// which repeats every byte.
void FillBits(uint8_t* row, size_t first, size_t last, uint8_t pattern) {
  const auto mix = [&](uint8_t& byte, int mask) {
    byte = static_cast<uint8_t>((byte & ~mask) | (pattern & mask));
  };
  const int headMask = 0xFF >> (first % 8);
  const int tailMask = 0xFF00 >> (last % 8) & 0xFF;
  const size_t firstByte = first / 8, lastByte = last / 8;
  if (firstByte == lastByte) {
    mix(row[firstByte], headMask & tailMask);
    return;
  }
  mix(row[firstByte], headMask);
  std::memset(row + firstByte + 1, pattern, lastByte - firstByte - 1);
  if (tailMask != 0) mix(row[lastByte], tailMask);
}

// Writes the bytes of one pixel to `bytes` and returns their number.
size_t PixelBytes(TPixelFormat format, TColor color, uint8_t* bytes) {
  switch (format) {
    case pf15bit:
      StoreWord(bytes, Word555FromColor(color));
      return 2;
    case pf16bit:
      StoreWord(bytes, Word565FromColor(color));
      return 2;
    default:
      bytes[0] = static_cast<uint8_t>(color >> 16);
      bytes[1] = static_cast<uint8_t>(color >> 8);
      bytes[2] = static_cast<uint8_t>(color);
      bytes[3] = 255;
      return format == pf24bit ? 3 : 4;
  }
}

void FillIndexed(Raster& raster, const PixelRect& rect, TColor color) {
  const int index = NearestEntry(EntriesInReach(raster), color);
  const int bits = StoredBitsPerPixel(raster.Format());
  const auto pattern = static_cast<uint8_t>(bits == 1   ? -(index & 1)
                                            : bits == 4 ? (index & 15) * 17
                                                        : index);
  for (int y = rect.top; y < rect.bottom; ++y) {
    FillBits(raster.Row(y), static_cast<size_t>(rect.left) * static_cast<size_t>(bits),
             static_cast<size_t>(rect.right) * static_cast<size_t>(bits), pattern);
  }
}

// Writes the pixel once and doubles the written part repeatedly; further rows copy the first.
void FillTrueColor(Raster& raster, const PixelRect& rect, TColor color) {
  uint8_t pixel[4];
  const size_t pixelBytes = PixelBytes(raster.Format(), color, pixel);
  const size_t offset = static_cast<size_t>(rect.left) * pixelBytes;
  const size_t length = static_cast<size_t>(rect.right - rect.left) * pixelBytes;
  uint8_t* first = raster.Row(rect.top) + offset;
  const bool oneByte =
      std::all_of(pixel, pixel + pixelBytes, [&](uint8_t b) { return b == pixel[0]; });
  if (oneByte) {
    std::memset(first, pixel[0], length);
  } else {
    std::memcpy(first, pixel, pixelBytes);
    for (size_t done = pixelBytes; done < length; done *= 2) {
      std::memcpy(first + done, first, std::min(done, length - done));
    }
  }
  for (int y = rect.top + 1; y < rect.bottom; ++y) {
    std::memcpy(raster.Row(y) + offset, first, length);
  }
}

}  // namespace

PixelRect ClipRect(const PixelRect& rect, int width, int height) {
  return {std::max(rect.left, 0), std::max(rect.top, 0), std::min(rect.right, width),
          std::min(rect.bottom, height)};
}

std::span<const tagPALETTEENTRY> EntriesInReach(const Raster& raster) {
  const std::span<const tagPALETTEENTRY> entries = raster.palette.Entries();
  if (!IsIndexed(raster.Format())) return entries;
  return entries.first(std::min(entries.size(), size_t{1} << StoredBitsPerPixel(raster.Format())));
}

void FillRaster(Raster& raster, const PixelRect& rect, TColor color) {
  const PixelRect inside = ClipRect(rect, raster.Width(), raster.Height());
  if (inside.left >= inside.right || inside.top >= inside.bottom) return;
  if (IsIndexed(raster.Format())) {
    FillIndexed(raster, inside, color);
  } else {
    FillTrueColor(raster, inside, color);
  }
}

}  // namespace rasterkit
