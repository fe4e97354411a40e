#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/strings/format_text.h>

namespace rasterkit::test {
namespace {

std::string Filled(std::string_view pattern, const std::vector<std::string>& values) {
  return FormatText(pattern, values);
}

TEST(FormatText, Should_FillPlacesInTurn_When_ThereAreAsManyValues) {
  EXPECT_EQ(Filled("%d * %d px (%s [%s])", {"3", "4", "12", "byte"}), "3 * 4 px (12 [byte])");
}

TEST(FormatText, Should_KeepWhatIsNoPlace_When_PercentSignsStandAlone) {
  EXPECT_EQ(Filled("100%% of %x, %", {"1"}), "100% of %x, %");
}

TEST(FormatText, Should_StaySafe_When_PlacesAndValuesDoNotMatch) {
  EXPECT_EQ(Filled("%d and %d", {"1"}), "1 and %d");
  EXPECT_EQ(Filled("none", {"1", "2"}), "none");
  EXPECT_EQ(Filled("", {}), "");
}

TEST(FormatText, Should_NotReadValuesAsPatterns_When_TheyHoldPercentSigns) {
  EXPECT_EQ(Filled("%s %s", {"%s", "b"}), "%s b");
}

TEST(DecimalMark, Should_BeAPoint_When_TheHostHasSetNone) {
  EXPECT_EQ(DecimalMark(), ".");
  SetDecimalMark(",");
  EXPECT_EQ(DecimalMark(), ",");
  SetDecimalMark("");
  EXPECT_EQ(DecimalMark(), ".");
}

}  // namespace
}  // namespace rasterkit::test
