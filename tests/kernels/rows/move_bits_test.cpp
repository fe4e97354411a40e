#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/kernels/rows/move_bits.h>

namespace rasterkit {
namespace {

using Bytes = std::vector<uint8_t>;

bool BitOf(const Bytes& bytes, size_t bit) {
  return (bytes[bit / 8] >> (7 - bit % 8) & 1) != 0;
}

void SetBit(Bytes& bytes, size_t bit, bool value) {
  const auto mask = static_cast<uint8_t>(0x80 >> (bit % 8));
  bytes[bit / 8] = static_cast<uint8_t>(value ? bytes[bit / 8] | mask : bytes[bit / 8] & ~mask);
}

Bytes RandomBytes(size_t count, std::mt19937& random) {
  Bytes bytes(count);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  return bytes;
}

TEST(MoveBitsTest, EqualsOneBitAfterTheOther) {
  std::mt19937 random(1);
  for (size_t from = 0; from < 17; ++from) {
    for (size_t to = 0; to < 17; ++to) {
      for (size_t count = 0; count < 200; ++count) {
        // Exactly the bytes that hold the bits: a sanitizer sees any other that is touched.
        const Bytes source = RandomBytes((from + count + 7) / 8, random);
        Bytes target = RandomBytes((to + count + 7) / 8, random);
        Bytes expected = target;
        for (size_t i = 0; i < count; ++i) SetBit(expected, to + i, BitOf(source, from + i));
        kernels::MoveBits(source.data(), from, target.data(), to, count);
        ASSERT_EQ(target, expected) << count << " bits from " << from << " to " << to;
      }
    }
  }
}

}  // namespace
}  // namespace rasterkit
