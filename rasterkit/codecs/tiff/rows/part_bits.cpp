#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/tiff/rows/part_bits.h>

namespace rasterkit::detail {

namespace {

/// Gives 1 to 8 bits from a bit position on, in the high bits; reads no byte behind them.
uint8_t BitsAt(const uint8_t* source, size_t bit, size_t count) {
  const size_t skipped = bit & 7;
  auto bits = static_cast<uint32_t>(source[bit / 8]) << skipped;
  if (skipped + count > 8) bits |= static_cast<uint32_t>(source[bit / 8 + 1]) >> (8 - skipped);
  return static_cast<uint8_t>(bits);
}

/// Puts the high `count` bits into a byte from bit `at` on, which has room for them.
void PutBits(uint8_t& byte, uint8_t bits, size_t at, size_t count) {
  const auto mask = static_cast<uint8_t>((0xFF00u >> count & 0xFFu) >> at);
  byte = static_cast<uint8_t>((byte & ~mask) | ((bits >> at) & mask));
}

}  // namespace

void CopyPartBits(const uint8_t* source, size_t sourceBit, uint8_t* target, size_t targetBit,
                  size_t count) {
  if ((targetBit & 7) != 0 && count > 0) {
    const size_t head = std::min(count, 8 - (targetBit & 7));
    PutBits(target[targetBit / 8], BitsAt(source, sourceBit, head), targetBit & 7, head);
    sourceBit += head, targetBit += head, count -= head;
  }
  const size_t bytes = count / 8;
  source += sourceBit / 8, target += targetBit / 8;
  const size_t shift = sourceBit & 7;
  if (shift == 0) {
    std::memcpy(target, source, bytes);
  } else {
    for (size_t i = 0; i < bytes; i++) {
      target[i] = static_cast<uint8_t>(source[i] << shift | source[i + 1] >> (8 - shift));
    }
  }
  const size_t tail = count % 8;
  if (tail > 0) PutBits(target[bytes], BitsAt(source + bytes, shift, tail), 0, tail);
}

}  // namespace rasterkit::detail
