#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/pixels/bit_depths.h>
#include <rasterkit/graphics/bitmap.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::detail {
namespace {

TEST(SplitNibbles, Should_GiveTheHighNibbleTwice_For_EveryByte) {
  for (int value = 0; value < 256; ++value) {
    uint8_t high = 0xEE, low = 0xEE;
    SplitNibbles(static_cast<uint8_t>(value), high, low);
    EXPECT_EQ(high, value / 16);
    EXPECT_EQ(low, value / 16);
  }
  uint8_t high, low;
  SplitNibbles(0x3C, high, low);
  EXPECT_EQ(high, 3);
  EXPECT_EQ(low, 3);
}

TEST(JoinNibbles, Should_PackWithoutMaskingLow_For_EveryPairOfBytes) {
  for (int high = 0; high < 256; ++high) {
    for (int low = 0; low < 256; ++low) {
      uint8_t target = 0xEE;
      JoinNibbles(target, static_cast<uint8_t>(high), static_cast<uint8_t>(low));
      ASSERT_EQ(target, (low | high * 16) % 256) << high << ", " << low;
    }
  }
}

TEST(Word565ToRGB, Should_DropNothingAndReplicateNothing_For_EveryWord) {
  for (int word = 0; word < 65536; ++word) {
    uint8_t red = 1, green = 1, blue = 1;
    Word565ToRGB(static_cast<uint16_t>(word), red, green, blue);
    const bool white = word == 0xFFFF;
    ASSERT_EQ(red, white ? 255 : word / 2048 * 8) << word;
    ASSERT_EQ(green, white ? 255 : word / 32 % 64 * 4) << word;
    ASSERT_EQ(blue, white ? 255 : word % 32 * 8) << word;
    ASSERT_EQ(RGBToWord565(red, green, blue), word) << "there and back";
  }
}

TEST(Word565ToRGB, Should_ReachWhiteOnlyThroughAllOnes) {
  uint8_t red, green, blue;
  Word565ToRGB(0xFFFE, red, green, blue);
  EXPECT_EQ(std::vector<int>({red, green, blue}), std::vector<int>({248, 252, 240}));
  Word565ToRGB(0xF800, red, green, blue);
  EXPECT_EQ(std::vector<int>({red, green, blue}), std::vector<int>({248, 0, 0}));
  Word565ToRGB(0xFFFF, red, green, blue);
  EXPECT_EQ(std::vector<int>({red, green, blue}), std::vector<int>({255, 255, 255}));
}

TEST(RGBToWord565, Should_DropTheLowBits) {
  EXPECT_EQ(RGBToWord565(255, 255, 255), 0xFFFF);
  EXPECT_EQ(RGBToWord565(255, 255, 254), 0xFFFF);
  EXPECT_EQ(RGBToWord565(255, 0, 0), 0xF800);
  EXPECT_EQ(RGBToWord565(7, 3, 7), 0);
  EXPECT_EQ(RGBToWord565(8, 4, 8), 0x0821);
}

TEST(SetMonoBit, Should_ChangeOneBitOnly_For_EveryPixelOfARow) {
  for (int n = 0; n < 32; ++n) {
    for (const bool value : {false, true}) {
      std::vector<uint8_t> row(4, value ? 0x00 : 0xFF);
      std::vector<uint8_t> expected = row;
      expected[static_cast<size_t>(n / 8)] ^= static_cast<uint8_t>(128 >> (n % 8));
      SetMonoBit(n, row.data(), value);
      EXPECT_EQ(row, expected) << n;
      SetMonoBit(n, row.data(), value);
      EXPECT_EQ(row, expected) << "a second time, " << n;
    }
  }
}

TEST(TestMonoBit, Should_CompareTheBit_For_EveryByteAndPosition) {
  for (int byte = 0; byte < 256; ++byte) {
    for (int position = 0; position < 8; ++position) {
      const bool isSet = byte / (128 >> position) % 2 == 1;
      EXPECT_EQ(TestMonoBit(position, static_cast<uint8_t>(byte), true), isSet);
      EXPECT_EQ(TestMonoBit(position, static_cast<uint8_t>(byte), false), !isSet);
    }
  }
}

TEST(TestMonoBit, Should_BeTrue_For_PositionsOutside0To7) {
  for (const int position : {-1, 8, 31, 32, 1000, -1000}) {
    EXPECT_TRUE(TestMonoBit(position, 0xA5, true));
    EXPECT_TRUE(TestMonoBit(position, 0xA5, false));
  }
}

struct PixelBytes {
  bool known;
  int32_t bytes, bits;
  friend bool operator==(const PixelBytes&, const PixelBytes&) = default;
};

PixelBytes PixelBytesOf(TBitmap& bitmap) {
  PixelBytes info{false, -1, -1};
  info.known = GetPixelByteInfo(bitmap, info.bytes, info.bits);
  return info;
}

TEST(GetPixelByteInfo, Should_KnowEveryFormat_And_LeaveTheBitmapAlone) {
  const PixelBytes expected[] = {{true, 0, 1}, {true, 0, 4}, {true, 1, 0}, {true, 2, 0},
                                 {true, 2, 0}, {true, 3, 0}, {true, 4, 0}};
  for (size_t i = 0; i < std::size(expected); ++i) {
    TBitmap bitmap = test::GradientBitmap(test::kEveryFormat[i], 5, 3);
    EXPECT_EQ(PixelBytesOf(bitmap), expected[i]) << test::kEveryFormat[i];
    EXPECT_TRUE(test::SamePixels(test::GradientBitmap(test::kEveryFormat[i], 5, 3), bitmap));
  }
}

TEST(GetPixelByteInfo, Should_SwitchADeviceBitmapTo32Bits) {
  TBitmap bitmap;
  bitmap.SetSize(5, 3);
  ASSERT_EQ(bitmap.PixelFormat(), pfDevice);
  EXPECT_EQ(PixelBytesOf(bitmap), (PixelBytes{true, 4, 0}));
  EXPECT_EQ(bitmap.PixelFormat(), pf32bit);
}

TEST(GetPixelByteInfo, Should_MeasureACustomBitmapByItsStoredBits) {
  TBitmap bitmap = test::GradientBitmap(pf24bit, 5, 3);
  bitmap.SetPixelFormat(pfCustom);
  EXPECT_EQ(PixelBytesOf(bitmap), (PixelBytes{true, 3, 0}));
  EXPECT_EQ(bitmap.PixelFormat(), pf24bit);
  TBitmap other = test::GradientBitmap(pf32bit, 5, 3);
  other.SetPixelFormat(pfCustom);
  EXPECT_EQ(PixelBytesOf(other), (PixelBytes{true, 4, 0}));
  EXPECT_EQ(other.PixelFormat(), pf32bit);
}

TEST(GetPixelByteInfo, Should_SwitchTo32Bits_But_TellTheMeasuredSize_For_NarrowCustomBitmaps) {
  struct Narrow {
    TPixelFormat stored;
    PixelBytes expected;
  };
  for (const Narrow& narrow :
       {Narrow{pf1bit, {true, 0, 4}}, Narrow{pf4bit, {true, 0, 4}}, Narrow{pf8bit, {true, 1, 0}},
        Narrow{pf15bit, {true, 2, 0}}, Narrow{pf16bit, {true, 2, 0}}}) {
    TBitmap bitmap = test::GradientBitmap(narrow.stored, 5, 3);
    const TColor corner = bitmap.PixelColor(0, 0);
    bitmap.SetPixelFormat(pfCustom);
    EXPECT_EQ(PixelBytesOf(bitmap), narrow.expected) << narrow.stored;
    EXPECT_EQ(bitmap.PixelFormat(), pf32bit) << narrow.stored;
    EXPECT_EQ(bitmap.StoredBits(), 32) << narrow.stored;
    EXPECT_EQ(bitmap.PixelColor(0, 0), corner) << narrow.stored;
  }
}

TEST(BytesOfBits, Should_RefuseBytesWithAPartOfAnother_But_AcceptLessThanAByte) {
  for (int bits = 0; bits <= 64; ++bits) {
    int32_t bytes = -1;
    const bool whole = bits < 8 || bits % 8 == 0;
    EXPECT_EQ(BytesOfBits(bits, bytes), whole) << bits;
    EXPECT_EQ(bytes, whole ? bits / 8 : 0) << bits;
  }
}

}  // namespace
}  // namespace rasterkit::detail
