#include <gtest/gtest.h>

#include <rasterkit/dialogs/bitmapframe/memory_size.h>
#include <rasterkit/strings/format_text.h>

namespace rasterkit::test {
namespace {

std::string Text(int bits, int width, int height) {
  const MemorySize size = MemorySizeOf(bits, width, height);
  return size.number + " " + size.unit;
}

TEST(MemorySize, Should_BeBytes_When_UpToTenThousand) {
  EXPECT_EQ(Text(24, 50, 50), "7500 byte");
  EXPECT_EQ(Text(8, 100, 100), "10000 byte");
  EXPECT_EQ(Text(1, 3, 1), "0 byte");
  EXPECT_EQ(Text(32, 0, 0), "0 byte");
}

TEST(MemorySize, Should_BeKilobytesWithoutDecimals_When_UpToAMillion) {
  EXPECT_EQ(Text(24, 100, 100), "30 kB");
  EXPECT_EQ(Text(8, 10001, 1), "10 kB");
  EXPECT_EQ(Text(8, 1000, 1000), "1000 kB");
}

TEST(MemorySize, Should_BeMegabytesWithTwoDecimals_When_Larger) {
  EXPECT_EQ(Text(24, 1000, 1000), "3.00 MB");
  EXPECT_EQ(Text(8, 1050, 1000), "1.05 MB");
  EXPECT_EQ(Text(32, 30000, 30000), "3600.00 MB");
}

TEST(MemorySize, Should_HaveTheMarkOfTheTexts_When_ThereAreDecimals) {
  SetDecimalMark(",");
  EXPECT_EQ(Text(8, 1050, 1000), "1,05 MB");
  EXPECT_EQ(Text(24, 100, 100), "30 kB");
  SetDecimalMark("");
}

}  // namespace
}  // namespace rasterkit::test
