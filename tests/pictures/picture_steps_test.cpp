#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

/// What a picture says about itself before a pixel is read is what the pixels then are.
namespace rasterkit {
namespace {

using test::GradientRaster;
using test::GrayRaster;

Picture PictureOf(Raster rows) {
  return Picture::Of(std::make_unique<TBitmap>(std::move(rows)));
}

struct NamedStep {
  const char* name;
  Step step;
};

std::vector<NamedStep> EveryStep() {
  RotateOptions transparent;
  transparent.fill.kind = Fill::Kind::transparent;
  RotateOptions linear;
  linear.filter = Filter::linear;
  return {
      {"turn", TurnStep{1}},
      {"half turn", TurnStep{2}},
      {"turn back", TurnStep{-1}},
      {"no turn", TurnStep{4}},
      {"mirror", MirrorStep{MirrorAxis::leftRight}},
      {"mirror down", MirrorStep{MirrorAxis::topBottom}},
      {"rotate 90", RotateStep{90, {}}},
      {"rotate 89.7", RotateStep{89.7, {}}},
      {"rotate 10", RotateStep{10, {}}},
      {"rotate -133.3", RotateStep{-133.3, {}}},
      {"rotate, transparent", RotateStep{17.3, transparent}},
      {"rotate, linear", RotateStep{17.3, linear}},
      {"crop", CropStep{3, 2, 11, 7}},
      {"crop all", CropStep{0, 0, 37, 23}},
      {"shrink", ResizeStep{10, 9, {}}},
      {"grow", ResizeStep{80, 50, {}}},
      {"shrink across", ResizeStep{10, 50, {}}},
      {"nearest", ResizeStep{10, 9, {Filter::nearest}}},
      {"area", ResizeStep{10, 9, {Filter::area}}},
      {"gray", ChangeStep{MakeGray{}}},
      {"gray as true color", ChangeStep{MakeGray{true}}},
      {"mono", ChangeStep{MakeMono{}}},
      {"adjust", ChangeStep{AdjustColors{20, 10, 0, 0, 0, 0}}},
      {"white for PDF", ChangeStep{WhiteForPdf{}}},
      {"paint", ChangeStep{PaintTransparency{clWhite}}},
      {"24 bits", ChangeStep{SetBits{24}}},
      {"1 bit", ChangeStep{SetBits{1}}},
  };
}

/// Kinds of pixels in few words. Whether the entries of a palette happen to be a gray ramp depends
/// on the pixels.
std::string KindOf(PixelLayout layout) {
  const bool isIndex = layout.type == NumberType::uint8 && layout.bands == 1;
  if (isIndex && layout.model == ColorModel::gray) layout.model = ColorModel::palette;
  return std::to_string(static_cast<int>(layout.type)) + " type, " + std::to_string(layout.bits) +
         " bits, " + std::to_string(layout.bands) + " bands, " +
         std::to_string(static_cast<int>(layout.model)) + " model, " +
         std::to_string(static_cast<int>(layout.alpha)) + " alpha, " +
         std::to_string(layout.extraBands) + " extra";
}

void ExpectForetold(Picture picture, const NamedStep& step, const std::string& source) {
  SCOPED_TRACE(source + ", " + step.name);
  picture.Apply(step.step);
  Samples numbers;
  try {
    numbers = picture.Numbers();
  } catch (const UnsupportedError&) {
    // 15- and 16-bit pixels are no numbers.
    const auto bitmap = picture.Bitmap();
    EXPECT_EQ(bitmap->Width(), picture.Width());
    EXPECT_EQ(bitmap->Height(), picture.Height());
    return;
  }
  EXPECT_EQ(numbers.Width(), picture.Width());
  EXPECT_EQ(numbers.Height(), picture.Height());
  EXPECT_EQ(KindOf(numbers.Layout()), KindOf(picture.Layout()));
}

/// The example of the class.
TEST(PictureSteps, AreChained) {
  const test::TempFolder folder;
  const std::string file = folder / "photo.jpg";
  Picture::Of(std::make_unique<TBitmap>(test::GradientRaster(pf24bit, 1000, 700))).Save(file);
  Picture photo = Picture::Open(file);
  photo.Crop({100, 0, 800, 600}).Resize(400, 300);
  const Report report = photo.Save(folder / "part.jpg");
  EXPECT_EQ(report.width, 400);
  EXPECT_EQ(report.height, 300);
  EXPECT_EQ(Picture::Open(folder / "part.jpg").Width(), 400);
}

TEST(PictureStep, ForetellsSidesAndKindOfRasters) {
  for (const TPixelFormat format : test::kEveryFormat) {
    for (const NamedStep& step : EveryStep()) {
      ExpectForetold(PictureOf(GradientRaster(format, 37, 23)), step,
                     "format " + std::to_string(format));
    }
  }
  for (const NamedStep& step : EveryStep()) {
    ExpectForetold(PictureOf(GrayRaster(37, 23)), step, "gray");
  }
}

Samples RampOf(NumberType type, int bands, ColorModel model, AlphaKind alpha, bool inPlanes) {
  PixelLayout layout;
  layout.type = type;
  layout.bits = static_cast<int>(BytesOf(type)) * 8;
  layout.bands = bands;
  layout.model = model;
  layout.alpha = alpha;
  Samples samples(layout, 37, 23, inPlanes);
  for (int plane = 0; plane < samples.Planes(); ++plane) {
    for (int y = 0; y < samples.Height(); ++y) {
      for (size_t i = 0; i < samples.Stride(); ++i) {
        // Low exponents: the numbers of every type are finite.
        samples.Row(y, plane)[i] = static_cast<uint8_t>((i * 3 + static_cast<size_t>(y) * 5) & 63);
      }
    }
  }
  return samples;
}

TEST(PictureStep, ForetellsSidesAndKindOfSamples) {
  for (const NumberType type : {NumberType::uint8, NumberType::uint16, NumberType::int16,
                                NumberType::float32, NumberType::uint32, NumberType::float64}) {
    for (const bool inPlanes : {false, true}) {
      for (const NamedStep& step : EveryStep()) {
        const std::string name = "type " + std::to_string(static_cast<int>(type));
        ExpectForetold(Picture::Of(RampOf(type, 1, ColorModel::gray, AlphaKind::none, inPlanes)),
                       step, name);
        ExpectForetold(Picture::Of(RampOf(type, 3, ColorModel::rgb, AlphaKind::none, inPlanes)),
                       step, name + ", colors");
      }
    }
  }
}

TEST(PictureStep, LeavesSamplesUntouchedWhereTheyMoveOnly) {
  Picture picture =
      Picture::Of(RampOf(NumberType::uint16, 4, ColorModel::cmyk, AlphaKind::none, false));
  const Samples before = picture.Numbers();
  picture.Turn(1).Turn(1).Mirror(MirrorAxis::leftRight).Mirror(MirrorAxis::topBottom);
  const Samples after = picture.Numbers();
  ASSERT_EQ(after.Stride(), before.Stride());
  for (int y = 0; y < before.Height(); ++y) {
    EXPECT_EQ(0, std::memcmp(before.Row(y), after.Row(y), before.Stride())) << y;
  }
}

TEST(PictureStep, ChecksItsArgumentsWhenItIsAdded) {
  const auto fails = [](const Step& step) {
    Picture picture = PictureOf(GradientRaster(pf24bit, 37, 23));
    EXPECT_THROW(picture.Apply(step), RangeError);
    EXPECT_TRUE(picture.Steps().empty());
    EXPECT_EQ(picture.Width(), 37);
  };
  fails(CropStep{30, 0, 8, 5});
  fails(CropStep{0, 20, 5, 4});
  fails(CropStep{-1, 0, 5, 4});
  fails(CropStep{0, 0, 0, 4});
  fails(CropStep{2147483647, 0, 2147483647, 1});
  fails(ResizeStep{0, 5, {}});
  fails(ResizeStep{5, -1, {}});
  fails(RotateStep{std::numeric_limits<double>::infinity(), {}});
  fails(NorthUpStep{});
  fails(ChangeStep{AdjustColors{101, 0, 0, 0, 0, 0}});
  fails(CombineStep{});
}

TEST(PictureStep, ArgumentsCountAgainstTheSidesSoFar) {
  Picture picture = PictureOf(GradientRaster(pf24bit, 37, 23));
  picture.Turn(1);
  EXPECT_EQ(picture.Width(), 23);
  EXPECT_THROW(picture.Crop(CropStep{0, 0, 37, 23}), RangeError);
  picture.Crop(CropStep{0, 0, 23, 37}).Crop(CropStep{1, 2, 10, 20});
  EXPECT_EQ(picture.Width(), 10);
  EXPECT_EQ(picture.Height(), 20);
  EXPECT_EQ(picture.Steps().size(), 3u);
}

TEST(PictureStep, CopiesOfAPictureGoTheirOwnWay) {
  Picture picture = PictureOf(GradientRaster(pf24bit, 37, 23));
  const Picture before = picture;
  picture.Crop(CropStep{0, 0, 5, 5});
  EXPECT_EQ(before.Width(), 37);
  EXPECT_TRUE(test::SamePixels(GradientRaster(pf24bit, 37, 23), before.Bitmap()->Content()));
  EXPECT_EQ(picture.Bitmap()->Width(), 5);
}

TEST(PictureStep, KeepsTheSizeOnPaperAndExchangesTheAxesOfATurn) {
  Raster rows = GradientRaster(pf24bit, 40, 20);
  rows.resolution = {300, 150};
  Picture picture = PictureOf(std::move(rows));
  picture.Turn(1);
  EXPECT_EQ(picture.GetMetadata().resolution, (Resolution{150, 300}));
  picture.Resize(10, 80);
  EXPECT_EQ(picture.GetMetadata().resolution, (Resolution{75, 600}));
  EXPECT_EQ(picture.Bitmap()->Dpi(), (Resolution{75, 600}));
}

TEST(PictureStep, MakesPixelsSquareBeforeARotationByAnyAngle) {
  Raster rows = GradientRaster(pf24bit, 40, 20);
  rows.resolution = {100, 200};
  Picture picture = PictureOf(std::move(rows));
  const Picture square = Picture(picture).Resize(80, 20);
  picture.Rotate(30);
  EXPECT_EQ(picture.GetMetadata().resolution, (Resolution{200, 200}));
  EXPECT_TRUE(test::SamePixels(Picture(square).Rotate(30).Bitmap()->Content(),
                               picture.Bitmap()->Content()));
  const Report report = picture.Plan("/nowhere/x.png");
  ASSERT_EQ(report.notes.size(), 1u);
  EXPECT_NE(report.notes[0].find("200 dots per inch"), std::string::npos);
}

TEST(PictureStep, RefusesSquarePixelsThatASideHasNoRoomFor) {
  constexpr int kWidth = 300'000'000;
  Raster rows(pf1bit, kWidth, 1);
  rows.palette = GrayPalette(2);
  rows.resolution = {100, 900};
  Picture picture = PictureOf(std::move(rows));
  EXPECT_THROW(picture.Rotate(30), RangeError);
  EXPECT_EQ(picture.Width(), kWidth);
}

}  // namespace
}  // namespace rasterkit
