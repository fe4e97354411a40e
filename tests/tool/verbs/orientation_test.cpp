#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

bool SidesAreExchanged(int orientation) {
  return orientation >= 5;
}

/// Position in the file of the upright pixel (x, y); `width` and `height` are those of the upright
/// picture.
std::pair<int, int> StoredPlace(int orientation, int x, int y, int width, int height) {
  const int right = width - 1 - x, bottom = height - 1 - y;
  switch (orientation) {
    case 2:
      return {right, y};
    case 3:
      return {right, bottom};
    case 4:
      return {x, bottom};
    case 5:
      return {y, x};
    case 6:
      return {y, right};
    case 7:
      return {bottom, right};
    case 8:
      return {bottom, x};
    default:
      return {x, y};
  }
}

/// Turns one pixel after the other, for 8- and 24-bit pictures.
Raster SetUpright(const Raster& stored, int orientation) {
  const bool exchanged = SidesAreExchanged(orientation);
  const int width = exchanged ? stored.Height() : stored.Width();
  const int height = exchanged ? stored.Width() : stored.Height();
  const int bytes = StoredBitsPerPixel(stored.Format()) / 8;
  Raster upright(stored.Format(), width, height);
  upright.palette = stored.palette;
  upright.ClearPadding();
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const auto [column, row] = StoredPlace(orientation, x, y, width, height);
      for (int i = 0; i < bytes; ++i)
        upright.Row(y)[x * bytes + i] = stored.Row(row)[column * bytes + i];
    }
  return upright;
}

/// Orientation, and whether the photograph is gray (8-bit).
class CliOrientation : public testing::TestWithParam<std::tuple<int, bool>> {
 protected:
  int Orientation() const { return std::get<0>(GetParam()); }

  void SavePhotograph() const {
    const bool isGray = std::get<1>(GetParam());
    SaveJpegFile(photo_, isGray ? GrayRaster(53, 38) : GradientRaster(pf24bit, 53, 38),
                 Orientation());
  }

  TempFolder folder_;
  std::string photo_ = folder_ / "photo.jpg";
};

TEST_P(CliOrientation, Convert_Should_MoveWholePixelsUpright_When_WrittenLossless) {
  SavePhotograph();
  const Raster expected = SetUpright(LoadFile(photo_), Orientation());
  for (const std::string name : {"upright.png", "upright.bmp"}) {
    const ToolResult result = RunTool({"convert", photo_, folder_ / name});
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_TRUE(SamePixels(expected, LoadFile(folder_ / name))) << name;
  }
}

TEST_P(CliOrientation, Convert_Should_EncodeTheUprightPicture_When_WrittenAsJpeg) {
  SavePhotograph();
  const Raster stored = LoadFile(photo_);
  Raster upright = SetUpright(stored, Orientation());
  upright.resolution = stored.resolution;
  upright.profile = stored.profile;
  ASSERT_EQ(RunTool({"convert", photo_, folder_ / "upright.jpg", "--quality", "83"}).code, 0);
  const Raster written = LoadFile(folder_ / "upright.jpg");
  EXPECT_TRUE(SamePixels(DecodeJpeg(EncodeJpeg(upright, 83)), written));
  EXPECT_EQ(written.resolution, upright.resolution);
}

TEST_P(CliOrientation, Convert_Should_LeaveNothingToTurn_When_ConvertedTwice) {
  SavePhotograph();
  ASSERT_EQ(RunTool({"convert", photo_, folder_ / "once.jpg"}).code, 0);
  const auto facts = JsonLines(RunTool({"info", "--json", folder_ / "once.jpg"}).out).at(0);
  EXPECT_TRUE(facts["orientation"].is_null() || facts["orientation"] == 1) << facts;
  EXPECT_EQ(facts["rotation"], 0);
}

TEST_P(CliOrientation, Rotate_Should_TurnThePictureAsSeen) {
  SavePhotograph();
  const Raster upright = SetUpright(LoadFile(photo_), Orientation());
  ASSERT_EQ(RunTool({"rotate", photo_, folder_ / "turned.png", "--angle", "90"}).code, 0);
  // A quarter turn counter-clockwise, as for orientation 8.
  EXPECT_TRUE(SamePixels(SetUpright(upright, 8), LoadFile(folder_ / "turned.png")));
}

INSTANTIATE_TEST_SUITE_P(AllEight, CliOrientation,
                         testing::Combine(testing::Range(1, 9), testing::Bool()));

}  // namespace
}  // namespace rasterkit::test
