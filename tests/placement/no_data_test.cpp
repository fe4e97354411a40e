#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/placement/no_data.h>

namespace rasterkit::test {
namespace {

template <class T>
T SampleOf(const NoData& noData) {
  T value{};
  const auto bytes = noData.Sample();
  EXPECT_TRUE(bytes && bytes->size() == sizeof value);
  if (bytes && bytes->size() == sizeof value) std::memcpy(&value, bytes->data(), sizeof value);
  return value;
}

template <class T>
void ExpectWhole(NumberType type, const std::string& text, T value) {
  const NoData noData(text, type);
  EXPECT_TRUE(noData.Occurs()) << text;
  EXPECT_TRUE(noData.Is(value)) << text;
  EXPECT_FALSE(noData.Is(static_cast<T>(value + 1))) << text;
  EXPECT_EQ(SampleOf<T>(noData), value) << text;
  if (sizeof(T) < 8) {
    EXPECT_TRUE(noData.Is(static_cast<double>(value))) << text;
    EXPECT_FALSE(noData.Is(static_cast<double>(value) + 0.5)) << text;
  }
}

TEST(NoData, OfEveryWholeType) {
  ExpectWhole<uint8_t>(NumberType::uint8, "254", 254);
  ExpectWhole<int8_t>(NumberType::int8, "-128", -128);
  ExpectWhole<uint16_t>(NumberType::uint16, " 65534 ", 65534);
  ExpectWhole<int16_t>(NumberType::int16, "-32768", -32768);
  ExpectWhole<uint32_t>(NumberType::uint32, "4294967294", 4294967294U);
  ExpectWhole<int32_t>(NumberType::int32, "-2147483648", std::numeric_limits<int32_t>::min());
  ExpectWhole<uint64_t>(NumberType::uint64, "18446744073709551614", 18446744073709551614U);
  ExpectWhole<uint64_t>(NumberType::uint64, "9007199254740993", 9007199254740993U);
  ExpectWhole<int64_t>(NumberType::int64, "-9223372036854775808",
                       std::numeric_limits<int64_t>::min());
  ExpectWhole<int64_t>(NumberType::int64, "9007199254740993", 9007199254740993);
  ExpectWhole<int32_t>(NumberType::int32, "-9999.0", -9999);
  ExpectWhole<int32_t>(NumberType::int32, "+1e3", 1000);
}

TEST(NoData, ThatTheTypeCannotHoldNeverOccurs) {
  const std::pair<NumberType, const char*> cases[] = {{NumberType::uint8, "-9999"},
                                                      {NumberType::uint8, "256"},
                                                      {NumberType::int8, "128"},
                                                      {NumberType::uint16, "-1"},
                                                      {NumberType::int16, "-32769"},
                                                      {NumberType::uint32, "4294967296"},
                                                      {NumberType::int32, "2147483648"},
                                                      {NumberType::uint64, "-1"},
                                                      {NumberType::int64, "9223372036854775808"},
                                                      {NumberType::uint64, "18446744073709551616"},
                                                      {NumberType::int32, "0.5"},
                                                      {NumberType::int32, "nan"},
                                                      {NumberType::int32, "inf"},
                                                      {NumberType::int64, "1e300"},
                                                      {NumberType::float32, "1e300"},
                                                      {NumberType::uint16, ""}};
  for (const auto& [type, text] : cases) {
    const NoData noData(text, type);
    EXPECT_FALSE(noData.Occurs()) << text;
    EXPECT_FALSE(noData.IsUnreadable()) << text;
    EXPECT_FALSE(noData.Sample()) << text;
    EXPECT_FALSE(noData.Is(0.0)) << text;
  }
}

TEST(NoData, OfNeighborsBeyondDoublesIsExact) {
  const NoData noData("9007199254740993", NumberType::int64);
  EXPECT_FALSE(noData.Is(int64_t{9007199254740992}));
  EXPECT_FALSE(noData.Is(int64_t{9007199254740994}));
  EXPECT_TRUE(noData.Is(uint64_t{9007199254740993}));
}

TEST(NoData, OfFloatsIsTheNearestOne) {
  const NoData tenth("0.1", NumberType::float32);
  EXPECT_TRUE(tenth.Is(0.1F));
  EXPECT_FALSE(tenth.Is(0.1));
  EXPECT_EQ(SampleOf<float>(tenth), 0.1F);
  const NoData largest("-3.40282346638529e+38", NumberType::float32);
  EXPECT_TRUE(largest.Is(std::numeric_limits<float>::lowest()));
  EXPECT_TRUE(NoData("0.1", NumberType::float64).Is(0.1));
  EXPECT_EQ(SampleOf<double>(NoData("-1e300", NumberType::float64)), -1e300);
  EXPECT_TRUE(NoData("-inf", NumberType::float64).Is(-INFINITY));
}

TEST(NoData, NotANumberIsValidForFloats) {
  for (const char* text : {"nan", "NaN", "-nan"}) {
    for (const NumberType type : {NumberType::float16, NumberType::float32, NumberType::float64}) {
      const NoData noData(text, type);
      EXPECT_TRUE(noData.Occurs());
      EXPECT_TRUE(noData.Is(std::nan("")));
      EXPECT_FALSE(noData.Is(0.0));
      EXPECT_EQ(noData.Sample()->size(), BytesOf(type));
    }
  }
  EXPECT_TRUE(std::isnan(SampleOf<float>(NoData("nan", NumberType::float32))));
}

TEST(NoData, OfHalvesIsExact) {
  EXPECT_EQ(SampleOf<uint16_t>(NoData("-2", NumberType::float16)), 0xC000);
  EXPECT_FALSE(NoData("-9999", NumberType::float16).Sample());
}

TEST(NoData, ThatIsNoNumberIsSaid) {
  for (const char* text : {"none", "1,5", "0x10", "1 2", "--1"}) {
    EXPECT_TRUE(NoData(text, NumberType::float32).IsUnreadable()) << text;
    EXPECT_FALSE(NoData(text, NumberType::float32).Occurs()) << text;
  }
  EXPECT_FALSE(NoData().Occurs());
  EXPECT_FALSE(NoData().Is(0));
}

}  // namespace
}  // namespace rasterkit::test
