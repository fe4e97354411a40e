#include <cmath>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/rotation/rotate.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

class CliRotate : public testing::Test {
 protected:
  Raster Rotated(const Raster& raster, std::vector<std::string> options) {
    SaveBmpFile(folder_ / "a.bmp", raster);
    std::vector<std::string> line = {"rotate", folder_ / "a.bmp", folder_ / "b.bmp", "--overwrite"};
    line.insert(line.end(), options.begin(), options.end());
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 0) << result.err;
    return LoadFile(folder_ / "b.bmp");
  }

  TempFolder folder_;
};

/// The result of the library's own rotation.
TBitmap ByLibrary(const Raster& raster, float angle, TColor background) {
  auto bitmap = std::make_unique<TBitmap>(raster.Clone());
  EXPECT_TRUE(RotateBitmap(angle, bitmap, background, 1, nullptr));
  return std::move(*bitmap);
}

TEST_F(CliRotate, QuarterTurns_Should_MoveWholePixels_When_AnyFormatComesBack) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf16bit, pf24bit}) {
    const Raster raster = GradientRaster(format, 31, 18);
    Raster turned = raster.Clone();
    for (int i = 0; i < 4; ++i) {
      turned = Rotated(turned, {"--angle", "90"});
      EXPECT_EQ(turned.Width(), i % 2 == 0 ? 18 : 31);
    }
    EXPECT_TRUE(SamePixels(raster, turned)) << StoredBitsPerPixel(format);
    EXPECT_TRUE(
        SamePixels(Rotated(raster, {"--angle", "-90"}), Rotated(raster, {"--angle", "270"})));
    EXPECT_TRUE(
        SamePixels(Rotated(raster, {"--angle", "180"}), Rotated(raster, {"--angle", "-540"})));
  }
}

TEST_F(CliRotate, QuarterTurn_Should_BeCounterClockwise) {
  Raster raster(pf8bit, 3, 2);
  raster.ClearPadding();
  for (int i = 0; i < 6; ++i) raster.Row(i / 3)[i % 3] = static_cast<uint8_t>(i);
  const Raster turned = Rotated(raster, {"--angle", "90"});
  // 0 1 2      2 5
  // 3 4 5  ->  1 4
  //            0 3
  EXPECT_EQ(turned.Row(0)[0], 2);
  EXPECT_EQ(turned.Row(0)[1], 5);
  EXPECT_EQ(turned.Row(2)[0], 0);
}

TEST_F(CliRotate, OtherAngles_Should_BeTheLibrarysRotation) {
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf24bit}) {
    const Raster raster = GradientRaster(format, 41, 28);
    for (const double angle : {30.0, -12.25, 61.0, 135.0}) {
      const TBitmap expected =
          ByLibrary(raster, static_cast<float>(std::remainder(angle, 360)), RGB(0xC0, 0x20, 0x10));
      const Raster turned =
          Rotated(raster, {"--angle", std::to_string(angle), "--background", "C02010"});
      EXPECT_TRUE(SamePixels(expected.Content(), turned))
          << angle << ", " << StoredBitsPerPixel(format) << " bits";
    }
  }
}

TEST_F(CliRotate, Threads_Should_NotChangeAPixel) {
  const Raster raster = GradientRaster(pf24bit, 61, 47);
  const Raster one = Rotated(raster, {"--angle", "33", "--threads", "1"});
  for (const char* threads : {"2", "3", "7", "100"})
    EXPECT_TRUE(SamePixels(one, Rotated(raster, {"--angle", "33", "--threads", threads})))
        << threads;
}

TEST_F(CliRotate, Threads_Should_NotMatter_When_ThereAreFewerRowsThanThreads) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {1, 3}, {90, 1}, {3, 3}}) {
    const Raster raster = GradientRaster(pf24bit, width, height);
    for (const char* angle : {"0.6", "20", "30", "45"})
      EXPECT_TRUE(SamePixels(Rotated(raster, {"--angle", angle, "--threads", "1"}),
                             Rotated(raster, {"--angle", angle, "--threads", "100"})))
          << width << " x " << height << " by " << angle;
  }
}

TEST_F(CliRotate, AlmostAQuarter_Should_StillBeTurnedByTheRest) {
  const Raster raster = GradientRaster(pf24bit, 400, 20);
  const Raster exact = Rotated(raster, {"--angle", "90"});
  const Raster almost = Rotated(raster, {"--angle", "89.6"});
  EXPECT_EQ(exact.Width(), 20);
  EXPECT_EQ(almost.Width(), 23) << "20 cos 0.4 + 400 sin 0.4";
}

TEST_F(CliRotate, WholeTurns_Should_ChangeNothing) {
  const Raster raster = GradientRaster(pf24bit, 13, 8);
  for (const char* angle : {"0", "360", "-720"})
    EXPECT_TRUE(SamePixels(raster, Rotated(raster, {"--angle", angle}))) << angle;
}

TEST_F(CliRotate, AutoBackground_Should_MarkTheCornersTransparent_When_WrittenAsPng) {
  SaveBmpFile(folder_ / "a.bmp", GradientRaster(pf24bit, 40, 30));
  const ToolResult result = RunTool(
      {"rotate", folder_ / "a.bmp", folder_ / "b.png", "--angle", "30", "--background", "auto"});
  ASSERT_EQ(result.code, 0) << result.err;
  const Raster turned = LoadFile(folder_ / "b.png");
  ASSERT_TRUE(turned.transparentColor.has_value());
  EXPECT_EQ(*turned.transparentColor, RGB(254, 255, 255));
}

}  // namespace
}  // namespace rasterkit::test
