// rotate --deskew.

#include <cmath>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/bands/deskew/find_skew.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/verb_run.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

/// Lines 40 pixels apart, 3 pixels wide, on white, with a white margin.
Raster Plan(double degrees) {
  Raster raster(pf24bit, 800, 700);
  const double angle = degrees * std::acos(-1.0) / 180;
  for (int y = 0; y < raster.Height(); ++y) {
    for (int x = 0; x < raster.Width(); ++x) {
      const double dx = x - 400, dy = y - 350;
      const double across = std::cos(angle) * dx + std::sin(angle) * dy + 1000;
      const double down = -std::sin(angle) * dx + std::cos(angle) * dy + 1000;
      const bool isInside = std::abs(across - 1000) < 300 && std::abs(down - 1000) < 250;
      const bool isLine = std::fmod(across, 80) < 3 || std::fmod(down, 40) < 3;
      const uint8_t gray = isInside && isLine ? 20 : 255;
      for (int i = 0; i < 3; ++i) raster.Row(y)[3 * x + i] = gray;
    }
  }
  raster.ClearPadding();
  return raster;
}

class CliDeskew : public VerbTest {};

TEST_F(CliDeskew, Scan_Should_BecomeStraight) {
  for (const double degrees : {-7.5, 2.0}) {
    SCOPED_TRACE(degrees);
    const ToolResult result =
        RunVerb("rotate", Plan(degrees), {"--deskew", "--filter", "linear", "--fill", "FFFFFF"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("the scan is turned by "));
    const Skew again = FindSkew(LoadFile(folder_ / "out.png"));
    EXPECT_TRUE(again.isFound);
    EXPECT_NEAR(again.degrees, 0, 0.1);
  }
}

TEST_F(CliDeskew, Pixels_Should_BeCopied_When_TheScanLiesStraight) {
  const Raster plan = Plan(0);
  const ToolResult result = RunVerb("rotate", plan, {"--deskew", "--json"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.out + result.err, HasSubstr("the scan lies straight: 0 degrees"));
  EXPECT_TRUE(SamePixels(plan, LoadFile(folder_ / "out.png")));
  EXPECT_EQ(ReadBytes(folder_ / "in.png"), ReadBytes(folder_ / "out.png"));
}

TEST_F(CliDeskew, Picture_Should_StayWithAWarning_When_NoAngleIsFound) {
  std::mt19937 random(9);
  const Raster noise = RandomRaster(pf24bit, 300, 200, random);
  const ToolResult result = RunVerb("rotate", noise, {"--deskew"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_THAT(result.err, HasSubstr("no angle was found; the picture is not turned"));
  EXPECT_TRUE(SamePixels(noise, LoadFile(folder_ / "out.png")));
}

TEST_F(CliDeskew, Options_Should_ExcludeEachOther) {
  EXPECT_EQ(RunVerb("rotate", Plan(0), {"--deskew", "--angle", "3"}).code, 2);
  EXPECT_EQ(RunVerb("rotate", Plan(0), {"--deskew", "--north-up"}).code, 2);
  const ToolResult none = RunVerb("rotate", Plan(0), {});
  EXPECT_EQ(none.code, 2);
  EXPECT_THAT(none.err, HasSubstr("--angle A, --deskew or --north-up"));
}

}  // namespace
}  // namespace rasterkit::test
