#include <rasterkit/bands/colors/index_pixels.h>
#include <rasterkit/raster/pixel_format.h>

namespace rasterkit::detail {
namespace {

constexpr int kBitsOfByte = 8;

/// Position of a pixel in a packed byte; the first pixel is in the high bits.
struct Packing {
  int bits, perByte;
  unsigned mask;

  explicit Packing(const TBitmap& bitmap)
      : bits(bitmap.StoredBits()), perByte(kBitsOfByte / bits), mask((1u << bits) - 1) {}
  int Shift(int pixel) const { return kBitsOfByte - bits * (pixel % perByte + 1); }
  int Index(unsigned byte, int pixel) const {
    return static_cast<int>(byte >> Shift(pixel) & mask);
  }
};

}  // namespace

bool HasIndexes(const TBitmap& bitmap) {
  return IsIndexed(bitmap.PixelFormat());
}

int MostEntries(const TBitmap& bitmap) {
  return 1 << bitmap.StoredBits();
}

int IndexAt(const TBitmap& bitmap, int x, int y) {
  const Packing packing(bitmap);
  return packing.Index(bitmap.ScanLine(y)[x / packing.perByte], x);
}

void SetIndexAt(TBitmap& bitmap, int x, int y, int index) {
  const Packing packing(bitmap);
  uint8_t& byte = bitmap.ScanLine(y)[x / packing.perByte];
  const unsigned others = byte & ~(packing.mask << packing.Shift(x));
  byte = static_cast<uint8_t>(others | static_cast<unsigned>(index) << packing.Shift(x));
}

std::array<uint64_t, 256> CountIndexes(const TBitmap& bitmap) {
  const Packing packing(bitmap);
  std::array<uint64_t, 256> bytes{}, counts{};
  const int wholeBytes = bitmap.Width() / packing.perByte;
  for (int y = 0; y < bitmap.Height(); ++y) {
    const uint8_t* const row = bitmap.ScanLine(y);
    for (int i = 0; i < wholeBytes; ++i) ++bytes[row[i]];
    for (int x = wholeBytes * packing.perByte; x < bitmap.Width(); ++x) {
      ++counts[static_cast<size_t>(packing.Index(row[wholeBytes], x))];
    }
  }
  for (unsigned byte = 0; byte < bytes.size(); ++byte) {
    for (int pixel = 0; pixel < packing.perByte; ++pixel) {
      counts[static_cast<size_t>(packing.Index(byte, pixel))] += bytes[byte];
    }
  }
  return counts;
}

void ReplaceIndexes(TBitmap& bitmap, const std::array<uint8_t, 256>& table) {
  const Packing packing(bitmap);
  std::array<uint8_t, 256> bytes{};
  for (unsigned byte = 0; byte < bytes.size(); ++byte) {
    for (int pixel = 0; pixel < packing.perByte; ++pixel) {
      bytes[byte] = static_cast<uint8_t>(
          bytes[byte] | (table[static_cast<size_t>(packing.Index(byte, pixel))] & packing.mask)
                            << packing.Shift(pixel));
    }
  }
  const size_t rowBytes = bitmap.Content().RowBytes();
  const auto used = static_cast<unsigned>(bitmap.Width() * packing.bits % kBitsOfByte);
  const auto lastMask = static_cast<uint8_t>(used == 0 ? 0xFF : 0xFF00 >> used);
  for (int y = 0; y < bitmap.Height() && rowBytes > 0; ++y) {
    uint8_t* const row = bitmap.ScanLine(y);
    for (size_t i = 0; i < rowBytes; ++i) row[i] = bytes[row[i]];
    row[rowBytes - 1] &= lastMask;
  }
}

}  // namespace rasterkit::detail
