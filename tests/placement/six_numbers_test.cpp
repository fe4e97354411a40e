#include <bit>
#include <cmath>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/placement/side_files.h>
#include <rasterkit/placement/six_numbers.h>

namespace rasterkit::test {
namespace {

using detail::ParseWorldFile;
using testing::HasSubstr;

const Affine kPlace{0.5, 0, 0, -0.5, 440720, 3751320};

TEST(SixNumbers, AreReadFromLines) {
  EXPECT_EQ(ParseWorldFile("0.5\n0\n0\n-0.5\n440720\n3751320\n").affine, kPlace);
  EXPECT_EQ(ParseWorldFile("0.5\r\n0\r\n0\r\n-0.5\r\n440720\r\n3751320").affine, kPlace);
  EXPECT_EQ(ParseWorldFile("  +0.5 \n0.0\n-0\n-5e-1\n4.4072E5\n3751320.000").affine, kPlace);
  EXPECT_EQ(ParseWorldFile("0.5 0 0 -0.5 440720 3751320").affine, kPlace);
  EXPECT_EQ(ParseWorldFile("\xEF\xBB\xBF"
                           "0.5\n0\n0\n-0.5\n440720\n3751320\n")
                .affine,
            kPlace);
}

TEST(SixNumbers, IgnoreWhatFollows) {
  EXPECT_EQ(ParseWorldFile("0.5\n0\n0\n-0.5\n440720\n3751320\nnan, and 1,5\n").affine, kPlace);
}

TEST(SixNumbers, AreRefusedWithLineAndReason) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "line 1: the file ends after 0 of 6 numbers"},
      {"1\n0\n0\n-1\n5\n", "line 6: the file ends after 5 of 6 numbers"},
      {"1\n0\n0,5\n-1\n5\n6\n", "line 3: \"0,5\" has a comma"},
      {"1,5\r\n0\r\n", "line 1: \"1,5\" has a comma"},
      {"1\r\n0\r\nx\r\n", "line 3: \"x\" is not a number"},
      {"1\n0\n0\nnan\n5\n6\n", "line 4: \"nan\" is not a finite number"},
      {"1\n0\n0\n-inf\n5\n6\n", "line 4: \"-inf\" is not a finite number"},
      {"1\n0\n0\n1e999\n5\n6\n", "line 4: \"1e999\" is not a finite number"},
      {"1\n0\n0\n0x10\n5\n6\n", "line 4: \"0x10\" is not a number"},
      {"1\n0\n0\n-1\n5\n6m\n", "line 6: \"6m\" is not a number"},
      {"0\n0\n0\n-1\n5\n6\n", "lines 1 and 2: the size of a column is 0"},
      {"1\n0\n0\n0\n5\n6\n", "lines 3 and 4: the size of a row is 0"},
      {"1\n2\n2\n4\n5\n6\n", "a pixel has no area"},
      {"\x01\xff\n", "line 1: \"??\" is not a number"},
  };
  for (const auto& [text, reason] : cases) {
    const auto reading = ParseWorldFile(text);
    EXPECT_FALSE(reading.affine) << text;
    EXPECT_THAT(reading.reason, HasSubstr(reason));
  }
}

TEST(SixNumbers, OfACutFileMustBeWhole) {
  EXPECT_FALSE(ParseWorldFile("1\n0\n0\n-1\n5\n12", true).affine);
  EXPECT_TRUE(ParseWorldFile("1\n0\n0\n-1\n5\n12", false).affine);
  EXPECT_TRUE(ParseWorldFile("1\n0\n0\n-1\n5\n12\n", true).affine);
}

TEST(SixNumbers, AreWrittenInSixLines) {
  EXPECT_EQ(WorldFileText(kPlace), "0.5\n0\n0\n-0.5\n440720\n3751320\n");
  EXPECT_EQ(WorldFileText({0.1, -0.0, 1e-12, -3, 1e20, 0.00001}),
            "0.1\n0\n1e-12\n-3\n1e+20\n0.00001\n");
}

TEST(SixNumbers, ReadBackAsTheSameDoubles) {
  const auto seed = std::random_device()();
  std::mt19937_64 random(seed);
  // Any bits that are a finite number of a usual size.
  const auto number = [&] {
    for (;;) {
      const auto value = std::bit_cast<double>(random());
      if (std::isfinite(value) && std::abs(value) > 1e-100 && std::abs(value) < 1e100) return value;
    }
  };
  int read = 0;
  for (int i = 0; i < 2000; ++i) {
    const Affine affine{number(), number(), number(), number(), number(), number()};
    const auto reading = ParseWorldFile(WorldFileText(affine));
    if (!reading.affine) continue;
    ++read;
    ASSERT_EQ(*reading.affine, affine) << "seed " << seed;
  }
  EXPECT_GT(read, 1900) << "seed " << seed;
}

}  // namespace
}  // namespace rasterkit::test
