#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/jpegexif/byte_order.h>

namespace rasterkit {
namespace {

TEndInd Order(bool motorola) {
  TEndInd order;
  order.MotorolaOrder = motorola;
  return order;
}

TEST(ByteOrder, NewReader_Should_BeLittleEndian) {
  EXPECT_FALSE(TEndInd().MotorolaOrder);
}

TEST(ByteOrder, Get_Should_ReadFromOneBasedPositions) {
  const std::string bytes("\x01\x02\x03\x04\x05", 5);
  EXPECT_EQ(Order(false).Get16u(bytes, 1), 0x0201u);
  EXPECT_EQ(Order(true).Get16u(bytes, 1), 0x0102u);
  EXPECT_EQ(Order(false).Get32u(bytes, 2), 0x05040302u);
  EXPECT_EQ(Order(true).Get32u(bytes, 2), 0x02030405u);
}

TEST(ByteOrder, Get32s_Should_BeSigned_When_TheTopBitIsSet) {
  const std::string bytes("\xFE\xFF\xFF\xFF", 4);
  EXPECT_EQ(Order(false).Get32s(bytes, 1), -2);
  EXPECT_EQ(Order(false).Get32u(bytes, 1), 0xFFFFFFFEu);
  EXPECT_EQ(Order(true).Get32s(bytes, 1), -16777217);
}

TEST(ByteOrder, Get_Should_ReadZeros_When_OutsideTheBuffer) {
  const std::string bytes("\x11\x22", 2);
  EXPECT_EQ(Order(false).Get32u(bytes, 2), 0x22u);
  EXPECT_EQ(Order(true).Get32u(bytes, 2), 0x22000000u);
  EXPECT_EQ(Order(true).Get16u(bytes, 0), 0x11u);
  EXPECT_EQ(Order(true).Get32u(bytes, -7), 0u);
  EXPECT_EQ(Order(false).Get32u(bytes, int64_t{1} << 40), 0u);
  EXPECT_EQ(Order(false).Get16u("", 1), 0u);
}

TEST(ByteOrder, ExtremePositions_Should_BeOutsideTheBuffer) {
  // The sanitizers see a position that overflows.
  const std::string bytes("\x11\x22\x33\x44", 4);
  for (const int64_t last : {INT64_MAX, INT64_MIN}) {
    for (const int64_t away : {0, 1, 2, 3}) {
      const int64_t position = last > 0 ? last - away : last + away;
      for (const bool motorola : {false, true}) {
        EXPECT_EQ(Order(motorola).Get16u(bytes, position), 0u);
        EXPECT_EQ(Order(motorola).Get32u(bytes, position), 0u);
        EXPECT_EQ(Order(motorola).Get32s(bytes, position), 0);
        std::string target = bytes;
        Order(motorola).WriteInt16(target, -1, position);
        Order(motorola).WriteInt32(target, -1, position);
        EXPECT_EQ(target, bytes);
      }
    }
  }
}

TEST(ByteOrder, Put32s_Should_HoldTheValueInTheCurrentOrder) {
  EXPECT_EQ(Order(false).Put32s(0x01020304), "\x04\x03\x02\x01");
  EXPECT_EQ(Order(true).Put32s(0x01020304), "\x01\x02\x03\x04");
  EXPECT_EQ(Order(true).Put32s(-2), "\xFF\xFF\xFF\xFE");
}

TEST(ByteOrder, Write_Should_OverwriteInPlace) {
  std::string bytes = "abcdefgh";
  Order(true).WriteInt16(bytes, 0x4142, 1);
  Order(false).WriteInt16(bytes, 0x4344, 3);
  Order(true).WriteInt32(bytes, 0x45464748, 5);
  EXPECT_EQ(bytes, "ABDCEFGH");
}

TEST(ByteOrder, Write_Should_NotGrowTheBuffer_When_TheEndIsReached) {
  std::string bytes = "abc";
  Order(true).WriteInt32(bytes, 0x41424344, 2);
  EXPECT_EQ(bytes, "aAB");
  Order(false).WriteInt16(bytes, 0x4142, 0);
  EXPECT_EQ(bytes, "AAB");
  Order(false).WriteInt16(bytes, 0x4142, -5);
  EXPECT_EQ(bytes, "AAB");
}

TEST(ByteOrder, WriteAndGet_Should_AgreeForEveryWord) {
  std::string bytes(4, '\0');
  for (const bool motorola : {false, true}) {
    const TEndInd order = Order(motorola);
    for (int32_t word = 0; word <= 0xFFFF; ++word) {
      order.WriteInt16(bytes, word, 2);
      ASSERT_EQ(order.Get16u(bytes, 2), static_cast<uint32_t>(word));
      ASSERT_EQ(static_cast<uint8_t>(bytes[motorola ? 2 : 1]), word & 0xFF);
    }
  }
}

TEST(ByteOrder, PutAndGet_Should_AgreeForRandomValues) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  for (int i = 0; i < 10000; ++i) {
    const auto value = static_cast<int32_t>(random());
    for (const bool motorola : {false, true}) {
      ASSERT_EQ(Order(motorola).Get32s(Order(motorola).Put32s(value), 1), value);
    }
  }
}

}  // namespace
}  // namespace rasterkit
