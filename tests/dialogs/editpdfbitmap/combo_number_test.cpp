#include <optional>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/editpdfbitmap/combo_number.h>

namespace rasterkit::test {
namespace {

std::optional<double> Parsed(const std::string& text, bool foldAngle = false) {
  double value = 0.5;
  if (ParseComboNumber(text, value, foldAngle)) return value;
  EXPECT_EQ(value, 0.5) << text;
  return std::nullopt;
}
std::optional<double> Angle(const std::string& text) {
  return Parsed(text, true);
}

TEST(ParseComboNumber, Should_JoinDigitsAcrossOtherCharacters) {
  EXPECT_EQ(Parsed("1a5"), 15);
  EXPECT_EQ(Parsed("dpi 300"), 300);
  EXPECT_EQ(Parsed("3 0 0 dpi"), 300);
  EXPECT_EQ(Parsed("1.5"), 15);
  EXPECT_EQ(Parsed("5-3"), 53);
  EXPECT_EQ(Parsed("30°"), 30);
}

TEST(ParseComboNumber, Should_StartWithTheFirstMinusOrDigit) {
  EXPECT_EQ(Parsed("-90"), -90);
  EXPECT_EQ(Parsed("a-b3"), -3);
  EXPECT_EQ(Parsed("--5"), -5);
  EXPECT_EQ(Parsed("- 1-2"), -12);
  EXPECT_EQ(Parsed("+7"), 7);
}

TEST(ParseComboNumber, Should_BeNoNumber_When_NoDigitIsThere) {
  EXPECT_EQ(Parsed("-"), std::nullopt);
  EXPECT_EQ(Parsed(""), std::nullopt);
  EXPECT_EQ(Parsed("dpi -"), std::nullopt);
  EXPECT_EQ(Angle("-"), std::nullopt);
}

TEST(ParseComboNumber, Should_StayInThirtyTwoBits) {
  EXPECT_EQ(Parsed("2147483647"), 2147483647.0);
  EXPECT_EQ(Parsed("2147483648"), 2147483647.0);
  EXPECT_EQ(Parsed("-99999999999999999999999999"), -2147483647.0);
  EXPECT_EQ(Parsed(std::string(100000, '9')), 2147483647.0);
}

TEST(ParseComboNumber, Should_NotFold_When_NotAsked) {
  EXPECT_EQ(Parsed("450"), 450);
  EXPECT_EQ(Parsed("-400"), -400);
}

TEST(ParseComboNumber, Should_FoldAngles) {
  EXPECT_EQ(Angle("359"), 359);
  EXPECT_EQ(Angle("360"), 0);
  EXPECT_EQ(Angle("361"), 1);
  EXPECT_EQ(Angle("450"), 90);
  EXPECT_EQ(Angle("720"), 0);
  EXPECT_EQ(Angle("-359"), -359);
  EXPECT_EQ(Angle("-360"), -360);
  EXPECT_EQ(Angle("-361"), -1);
  EXPECT_EQ(Angle("-400"), -40);
  EXPECT_EQ(Angle("-720"), -360);
  EXPECT_EQ(Angle("-721"), -1);
}

// The result of the rule's loops, number by number.
TEST(ParseComboNumber, Should_FoldAsSubtractingTurnsDoes) {
  for (int number = -3000; number <= 3000; ++number) {
    double expected = number;
    while (expected > 359.9) expected -= 360;
    while (expected < -360.1) expected += 360;
    EXPECT_EQ(Angle(std::to_string(number)), expected) << number;
  }
}

}  // namespace
}  // namespace rasterkit::test
