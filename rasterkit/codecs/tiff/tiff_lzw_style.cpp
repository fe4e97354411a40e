#include <algorithm>
#include <array>

#include <rasterkit/codecs/tiff/tiff_lzw_style.h>

namespace rasterkit::detail {

namespace {

/// Blocks that are looked at; each one costs a read of two bytes.
constexpr uint32_t kVoters = 64;

}  // namespace

bool HasLowBitsFirst(const TiffHandle& handle) {
  return handle.Field<uint16_t>(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) == FILLORDER_LSB2MSB;
}

LzwStyle LzwStyleOf(std::span<const uint8_t> packed, bool lowBitsFirst) {
  if (packed.size() < 2 || packed[0] != 0) return LzwStyle::usual;
  return (packed[1] & (lowBitsFirst ? 0x80 : 1)) != 0 ? LzwStyle::old : LzwStyle::usual;
}

LzwStyle LzwStyleOfFile(TiffHandle& handle, uint32_t blocks) {
  const bool lowBitsFirst = HasLowBitsFirst(handle);
  uint32_t usual = 0, old = 0;
  for (uint32_t block = 0; block < std::min(blocks, kVoters); block++) {
    std::array<uint8_t, 2> start{};
    const uint64_t offset = TIFFGetStrileOffset(handle.Tiff(), block);
    if (TIFFGetStrileByteCount(handle.Tiff(), block) < start.size() ||
        handle.Source().ReadAt(offset, start) < start.size()) {
      continue;
    }
    (LzwStyleOf(start, lowBitsFirst) == LzwStyle::old ? old : usual)++;
  }
  return old > usual ? LzwStyle::old : LzwStyle::usual;
}

}  // namespace rasterkit::detail
