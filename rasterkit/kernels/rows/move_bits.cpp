#include <algorithm>
#include <bit>
#include <cstring>

#include <rasterkit/kernels/rows/move_bits.h>

namespace rasterkit::kernels {
namespace {

constexpr size_t kByteBits = 8, kWordBits = 64;

/// `count` bits (1 to 8) from bit `bit` (0 to 7) on, the first one in the highest bit of the
/// result.
uint8_t ReadBits(const uint8_t* source, size_t bit, size_t count) {
  const unsigned second = bit + count > kByteBits ? source[1] : 0u;
  return static_cast<uint8_t>((source[0] << kByteBits | second) >> (kByteBits - bit));
}

/// Writes the highest `count` bits of `bits` from bit `bit` of a byte on, inside of it.
void MergeBits(uint8_t& target, size_t bit, size_t count, uint8_t bits) {
  const unsigned mask = (0xFFu << (kByteBits - count) & 0xFFu) >> bit;
  target = static_cast<uint8_t>((target & ~mask) | (unsigned{bits} >> bit & mask));
}

uint64_t BigEndian(uint64_t word) {
  return std::endian::native == std::endian::big ? word : __builtin_bswap64(word);
}

/// Whole bytes of the target from bit `shift` (1 to 7) of the source on.
void MoveShifted(const uint8_t* source, size_t shift, uint8_t* target, size_t bytes) {
  constexpr size_t kWordBytes = kWordBits / kByteBits;
  for (; bytes >= kWordBytes; bytes -= kWordBytes, source += kWordBytes, target += kWordBytes) {
    uint64_t word;
    std::memcpy(&word, source, kWordBytes);
    word = BigEndian(BigEndian(word) << shift |
                     static_cast<uint64_t>(source[kWordBytes] >> (kByteBits - shift)));
    std::memcpy(target, &word, kWordBytes);
  }
  for (; bytes > 0; --bytes, ++source) *target++ = ReadBits(source, shift, kByteBits);
}

}  // namespace

void MoveBits(const uint8_t* source, size_t sourceBit, uint8_t* target, size_t targetBit,
              size_t count) {
  source += sourceBit / kByteBits;
  target += targetBit / kByteBits;
  size_t from = sourceBit % kByteBits;
  const size_t to = targetBit % kByteBits;
  if (to != 0) {
    const size_t head = std::min(count, kByteBits - to);
    if (head == 0) return;
    MergeBits(*target++, to, head, ReadBits(source, from, head));
    from += head;
    source += from / kByteBits;
    from %= kByteBits;
    count -= head;
  }
  const size_t bytes = count / kByteBits, rest = count % kByteBits;
  if (from == 0) {
    std::memcpy(target, source, bytes);
  } else {
    MoveShifted(source, from, target, bytes);
  }
  if (rest > 0) MergeBits(target[bytes], 0, rest, ReadBits(source + bytes, from, rest));
}

}  // namespace rasterkit::kernels
