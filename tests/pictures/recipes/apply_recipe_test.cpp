#include <cmath>
#include <limits>
#include <typeinfo>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/pictures/recipes/error_place.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/pictures/recipes/made_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::GradientPicture;
using test::MapPicture;
using test::PaperPicture;
using test::SamePixels;
using testing::HasSubstr;

std::string TextOf(const CropStep& crop) {
  return std::to_string(crop.left) + "," + std::to_string(crop.top) + " " +
         std::to_string(crop.width) + "x" + std::to_string(crop.height);
}

std::string TextOf(const ResizeStep& size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

/// The pixels of a crop, or the reason why there are none.
std::string Cropped(const Picture& picture, const RecipeCrop& crop) {
  try {
    return TextOf(PixelsOf(crop, picture));
  } catch (const RangeError& error) {
    return error.Reason();
  }
}

std::string Resized(const Picture& picture, const RecipeResize& resize) {
  try {
    return TextOf(PixelsOf(resize, picture));
  } catch (const RangeError& error) {
    return error.Reason();
  }
}

constexpr TColor kRed = RGB(255, 0, 0), kGreen = RGB(0, 255, 0);
constexpr LengthUnit kPixels = LengthUnit::pixels, kPercent = LengthUnit::percent,
                     kMillimeters = LengthUnit::millimeters, kMap = LengthUnit::map;

TEST(RecipeCropTest, EdgesGoToTheNearestPixelHalvesToEven) {
  const Picture picture = GradientPicture(40, 30);
  EXPECT_EQ(Cropped(picture, {kPixels, 1, 2, 11, 22}), "1,2 10x20");
  EXPECT_EQ(Cropped(picture, {kPixels, 1.49, 2.51, 10.5, 21.5}), "1,3 9x19");
  EXPECT_EQ(Cropped(picture, {kPixels, 0.5, 1.5, 2.5, 3.5}), "0,2 2x2");
  EXPECT_EQ(Cropped(picture, {kPixels, -0.4, -0.5, 40.4, 30.5}), "0,0 40x30");
}

TEST(RecipeCropTest, KeepsAtLeastOnePixel) {
  const Picture picture = GradientPicture(40, 30);
  EXPECT_EQ(Cropped(picture, {kPixels, 7.1, 8.6, 7.2, 8.9}), "7,8 1x1");
  EXPECT_EQ(Cropped(picture, {kPixels, 39.6, 29.9, 39.9, 30}), "39,29 1x1");
  EXPECT_EQ(Cropped(picture, {kPixels, 0, 0, 1e-300, 1e-300}), "0,0 1x1");
}

TEST(RecipeCropTest, PercentAreOfEachSide) {
  const Picture picture = GradientPicture(40, 30);
  EXPECT_EQ(Cropped(picture, {kPercent, 10, 10, 90, 90}), "4,3 32x24");
  EXPECT_EQ(Cropped(picture, {kPercent, 0, 0, 100, 100}), "0,0 40x30");
  EXPECT_EQ(Cropped(picture, {kPercent, 50, 50, 100.01, 100}), "20,15 20x15");
  EXPECT_THAT(Cropped(picture, {kPercent, 50, 50, 102, 100}), HasSubstr("is not inside"));
}

TEST(RecipeCropTest, MillimetersGoByTheResolutionOfEachDirection) {
  const Picture picture = PaperPicture(400, 300, {254, 127});
  EXPECT_EQ(Cropped(picture, {kMillimeters, 1, 1, 11, 11}), "10,5 100x50");
  EXPECT_THAT(Cropped(GradientPicture(40, 30), {kMillimeters, 0, 0, 1, 1}),
              HasSubstr("states no resolution"));
}

TEST(RecipeCropTest, MapUnitsGoByThePosition) {
  // Two map units per pixel, the corner of the first pixel at 100, 200.
  const Picture picture = MapPicture(40, 30, {2, 0, 0, -2, 101, 199});
  EXPECT_EQ(Cropped(picture, {kMap, 110, 190, 130, 170}), "5,5 10x10");
  EXPECT_THAT(Cropped(picture, {kMap, 110, 170, 130, 190}), HasSubstr("bottom less than top"));
  EXPECT_THAT(Cropped(picture, {kMap, 90, 190, 130, 170}), HasSubstr("is not inside"));
  EXPECT_EQ(Cropped(picture, {kMap, 90, 190, 130, 170, Outside::clip}), "0,5 15x10");
  EXPECT_THAT(Cropped(GradientPicture(40, 30), {kMap, 0, 1, 1, 0}), HasSubstr("no position"));
}

TEST(RecipeCropTest, IsTheBoxInATurnedPosition) {
  // Columns run north, rows run east.
  const Picture picture = MapPicture(40, 30, {0, 1, 1, 0, 0.5, 0.5});
  EXPECT_EQ(Cropped(picture, {kMap, 3, 20, 10, 5}), "5,3 15x7");
  Picture cropped = picture;
  cropped.CropToMap({3, 5, 10, 20});
  EXPECT_EQ(cropped.Width(), 15);
  const Picture sheared = MapPicture(40, 30, {1, 0.25, 0.5, -1, 0, 0});
  const RecipeCrop crop{kMap, 15, -4, 20, -9};
  const CropStep pixels = PixelsOf(crop, sheared);
  Picture same = sheared;
  same.CropToMap({15, -9, 20, -4});
  EXPECT_EQ(TextOf(pixels), TextOf(std::get<CropStep>(same.Steps().back())));
}

TEST(RecipeCropTest, OutsideIsRefusedOrClipped) {
  const Picture picture = GradientPicture(40, 30);
  EXPECT_EQ(Cropped(picture, {kPixels, -5, 10, 20, 50}),
            "the rectangle is not inside the picture: it goes from column -5 to 20 and from row 10 "
            "to 50 of 40 x 30 pixels");
  EXPECT_EQ(Cropped(picture, {kPixels, -5, 10, 20, 50, Outside::clip}), "0,10 20x20");
  EXPECT_EQ(Cropped(picture, {kPixels, 39.9, 10, 99, 50, Outside::clip}), "39,10 1x20");
  EXPECT_THAT(Cropped(picture, {kPixels, 40, 10, 99, 50, Outside::clip}),
              HasSubstr("is not inside"));
  EXPECT_THAT(Cropped(picture, {kPixels, -9, 10, 0, 50, Outside::clip}),
              HasSubstr("is not inside"));
}

TEST(RecipeCropTest, RefusesWhatIsNoRectangle) {
  const Picture picture = PaperPicture(40, 30, {300, 300});
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinite = std::numeric_limits<double>::infinity();
  for (const LengthUnit unit : {kPixels, kPercent, kMillimeters, kMap}) {
    for (const Outside outside : {Outside::refuse, Outside::clip}) {
      EXPECT_EQ(Cropped(picture, {unit, nan, 0, 1, 1, outside}),
                "a coordinate is no finite number");
      EXPECT_EQ(Cropped(picture, {unit, 0, 0, infinite, 1, outside}),
                "a coordinate is no finite number");
    }
  }
  EXPECT_THAT(Cropped(picture, {kPixels, 5, 0, 5, 1}), HasSubstr("no area"));
  EXPECT_THAT(Cropped(picture, {kPixels, 0, 3, 1, 2}), HasSubstr("no area"));
  EXPECT_THAT(Cropped(picture, {kPixels, 0, 0, 1e300, 1}), HasSubstr("is not inside"));
  EXPECT_THAT(Cropped(picture, {kPixels, -1e300, 0, 1, 1}), HasSubstr("is not inside"));
  EXPECT_EQ(Cropped(picture, {kPercent, 0, 0, 1e307, 1e307, Outside::clip}), "0,0 40x30");
}

TEST(RecipeResizeTest, RoundsHalvesToEvenAndKeepsOnePixel) {
  const Picture picture = GradientPicture(40, 30);
  EXPECT_EQ(Resized(picture, {kPixels, 12.5, 13.5}), "12x14");
  EXPECT_EQ(Resized(picture, {kPixels, 0.1, 7}), "1x7");
  EXPECT_EQ(Resized(picture, {kPercent, 50, 25}), "20x8");
  EXPECT_EQ(Resized(picture, {kPercent, 1, 1}), "1x1");
}

TEST(RecipeResizeTest, TheOtherSideFollows) {
  const Picture picture = GradientPicture(40, 30);
  EXPECT_EQ(Resized(picture, {kPixels, 20, 0}), "20x15");
  EXPECT_EQ(Resized(picture, {kPixels, 0, 60}), "80x60");
  EXPECT_EQ(Resized(picture, {kPercent, 10, 0}), "4x3");
  EXPECT_EQ(Resized(picture, {kPixels, 1, 0}), "1x1");
}

TEST(RecipeResizeTest, MillimetersStateTheirResolution) {
  Picture picture = PaperPicture(400, 300, {254, 127});
  EXPECT_EQ(Resized(picture, {kMillimeters, 10, 10}), "100x50");
  EXPECT_EQ(Resized(picture, {kMillimeters, 10, 0}), "100x75");
  // On paper 40 x 60 mm.
  EXPECT_EQ(Resized(picture, {kMillimeters, 20, 0, 508}), "400x600");
  EXPECT_THAT(Resized(GradientPicture(4, 3), {kMillimeters, 10, 10}), HasSubstr("no resolution"));
  ApplyRecipeStep(picture, RecipeResize{kMillimeters, 10, 10});
  EXPECT_EQ(picture.GetMetadata().resolution, (Resolution{254, 127}));
  ApplyRecipeStep(picture, RecipeResize{kMillimeters, 20, 0, 508});
  EXPECT_EQ(picture.GetMetadata().resolution, (Resolution{508, 508}));
  // The size on paper stays.
  ApplyRecipeStep(picture, RecipeResize{kPercent, 50, 50});
  EXPECT_EQ(picture.GetMetadata().resolution, (Resolution{254, 254}));
}

TEST(RecipeResizeTest, RefusesWhatIsNoSize) {
  const Picture picture = GradientPicture(40, 30);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THAT(Resized(picture, {kPixels, nan, 1}), HasSubstr("finite"));
  EXPECT_THAT(Resized(picture, {kPixels, 1, 1, nan}), HasSubstr("finite"));
  EXPECT_THAT(Resized(picture, {kPixels, -1, 1}), HasSubstr("negative"));
  EXPECT_THAT(Resized(picture, {kPixels, 0, 0}), HasSubstr("width or a height"));
  EXPECT_THAT(Resized(picture, {kMap, 10, 10}), HasSubstr("map units"));
  EXPECT_EQ(Resized(picture, {kPixels, 1e300, 1}),
            "1e+300 x 1 is not a valid size: width and height must be from 1 to 1000000");
}

TEST(RecipeResizeTest, RefusesSidesOfMoreThanAMillionPixels) {
  const Picture picture = GradientPicture(40, 30);
  EXPECT_EQ(Resized(picture, {kPixels, 1e6, 1}), "1000000x1");
  EXPECT_EQ(Resized(picture, {kPercent, 1, 3333333}), "1x1000000");
  const RecipeResize tooLarge[] = {{kPixels, 1000001, 1},          {kPixels, 1, 1000001},
                                   {kPercent, 2500003, 1},         {kPercent, 1, 1e9},
                                   {kMillimeters, 1000, 0, 25401}, {kMillimeters, 0, 1e9, 300}};
  for (const RecipeResize& resize : tooLarge) {
    EXPECT_THAT(Resized(picture, resize), HasSubstr(" is not a valid size: width and height"))
        << resize.width << " " << resize.height;
  }
}

TEST(ApplyRecipeTest, LeavesThePictureAsItWasIfAStepDoesNotFit) {
  Picture picture = GradientPicture(40, 30);
  Recipe recipe;
  recipe.steps = {TurnStep{1}, RecipeCrop{kPixels, 0, 0, 40, 40}};
  try {
    ApplyRecipe(picture, recipe);
    FAIL() << "the crop does not fit the turned picture";
  } catch (const RangeError& error) {
    EXPECT_THAT(error.Reason(), testing::StartsWith("/steps/1: the rectangle"));
  }
  EXPECT_TRUE(picture.Steps().empty());
  EXPECT_EQ(picture.Width(), 40);
}

TEST(ApplyRecipeTest, ErrorsKeepTheirKindAndNameTheStep) {
  const auto faultOf = []<class Kind>(std::type_identity<Kind>, const RecipeStep& step) {
    Picture picture = GradientPicture(40, 30);
    try {
      ApplyRecipe(picture, {"", {MirrorStep{}, step}, {}});
      return std::string();
    } catch (const Kind& error) {
      return error.Reason();
    }
  };
  using testing::StartsWith;
  Limits limits;
  limits.pixels = 100'000;
  const LimitsScope scope(limits);
  EXPECT_THAT(faultOf(std::type_identity<LimitError>(), RecipeResize{kPixels, 1e5, 1e5}),
              StartsWith("/steps/1: a picture of 100000 x 100000 pixels"));
  EXPECT_THAT(faultOf(std::type_identity<RangeError>(), NorthUpStep{}),
              StartsWith("/steps/1: the picture has no position"));
  MetadataEdit edit;
  edit.set = {{"NoSuchTag", "1"}};
  EXPECT_THAT(faultOf(std::type_identity<RangeError>(), EditStep{edit}),
              StartsWith("/steps/1: no tag has the name"));
  EXPECT_THAT(faultOf(std::type_identity<RangeError>(), RecipePalette{"other"}),
              StartsWith("/steps/1: the slot \"other\" has no picture"));
}

template <class Kind>
void ExpectKindStays(const Kind& error) {
  try {
    detail::AtPlace("/steps/3", [&] { throw error; });
    FAIL() << error.what();
  } catch (const Error& placed) {
    EXPECT_EQ(typeid(placed), typeid(Kind)) << error.what();
    EXPECT_EQ(placed.Reason(), "/steps/3: " + error.Reason());
    EXPECT_EQ(placed.File(), error.File());
  }
}

TEST(ErrorPlaceTest, EachKindStays) {
  ExpectKindStays(Error("a", "f.png"));
  ExpectKindStays(FileError("b", "f.png"));
  ExpectKindStays(FormatError("c", "f.png"));
  ExpectKindStays(UnsupportedError("d"));
  ExpectKindStays(LimitError(LimitKind::pixels, "e"));
  ExpectKindStays(TimeLimitError("f"));
  ExpectKindStays(CanceledError("g"));
  ExpectKindStays(RangeError("h", "f.png"));
  ExpectKindStays(ConversionError("i"));
  ExpectKindStays(DivisionByZeroError("j"));
  try {
    detail::AtPlace("/save", [] { throw LimitError(LimitKind::side, "k"); });
    FAIL();
  } catch (const LimitError& error) {
    EXPECT_EQ(error.Kind(), LimitKind::side);
  }
}

TEST(ApplyRecipeTest, IsTheSameAsTheCallsOfPicture) {
  Picture picture = GradientPicture(40, 30), expected = picture;
  Recipe recipe;
  recipe.steps = {TurnStep{1}, RecipeCrop{kPercent, 10, 10, 90, 90}, RecipeResize{kPixels, 50, 0},
                  ChangeStep{AdjustColors{20, 10}}, MirrorStep{}};
  ApplyRecipe(picture, recipe);
  expected.Turn(1).Crop({3, 4, 24, 32}).Resize(50, 67).Change(AdjustColors{20, 10});
  expected.Mirror(MirrorAxis::leftRight);
  EXPECT_TRUE(SamePixels(*expected.Bitmap(), *picture.Bitmap()));
}

TEST(ApplyRecipeTest, ASlotBringsTheSecondPicture) {
  const Picture over = GradientPicture(20, 15), base = GradientPicture(40, 30, pf8bit);
  Picture picture = base, expected = base;
  const Recipe recipe{"", {RecipeCombine{"mark", {CombineMode::transparent, 40}, {}}}, {}};
  EXPECT_EQ(SlotsOf(recipe), std::vector<std::string>{"mark"});
  EXPECT_THROW(ApplyRecipe(picture, recipe), RangeError);
  ApplyRecipe(picture, recipe, {{"mark", over}});
  expected.Combine(over, {CombineMode::transparent, 40});
  EXPECT_TRUE(SamePixels(*expected.Bitmap(), *picture.Bitmap()));
}

TEST(ApplyRecipeTest, SavingSaysDepthAndMetadata) {
  auto rows = std::make_unique<TBitmap>(test::GradientRaster(pf32bit, 40, 30));
  rows->SetAlphaFormat(afDefined);
  Picture picture = Picture::Of(std::move(rows));
  RecipeSave save;
  save.bits = 8;
  save.background = kRed;
  save.metadata = RecipeSave::Keep::withoutGps;
  ApplyRecipe(picture, {"", {}, save});
  ASSERT_EQ(picture.Steps().size(), 3u);
  EXPECT_TRUE(std::get<EditStep>(picture.Steps()[0]).edit.stripGps);
  const auto& painted = std::get<ChangeStep>(picture.Steps()[1]).change;
  EXPECT_EQ(std::get<PaintTransparency>(painted).background, kRed);
  EXPECT_EQ(picture.Layout().BitsPerPixel(), 8);
  auto seen = std::make_unique<TBitmap>(test::GradientRaster(pf32bit, 4, 3));
  seen->SetAlphaFormat(afDefined);
  Picture kept = Picture::Of(std::move(seen));
  EXPECT_FALSE(ApplyDepth(kept, 32));
  EXPECT_EQ(kept.Layout().alpha, AlphaKind::straight);
  EXPECT_TRUE(ApplyDepth(kept, 24));
  EXPECT_EQ(kept.Layout().alpha, AlphaKind::none);
  EXPECT_TRUE(EditOf(RecipeSave::Keep::nothing).stripAll);
  EXPECT_TRUE(EditOf(RecipeSave::Keep::all).IsEmpty());
}

TEST(ApplyRecipeTest, SavingSaysTheOptionsOfTheSave) {
  RecipeSave save;
  save.type = PictureType::tiff;
  save.compression = TiffCompression::deflate;
  save.quality = 77;
  save.chromaX = 2;
  save.chromaY = 1;
  save.pngLevel = 9;
  save.lossless = Lossless::trim;
  save.background = kGreen;
  const SaveOptions options = SaveOptionsOf(save);
  EXPECT_EQ(options.type, PictureType::tiff);
  EXPECT_EQ(options.compression, TiffCompression::deflate);
  EXPECT_EQ(options.quality, 77);
  EXPECT_EQ(options.chromaX, 2);
  EXPECT_EQ(options.chromaY, 1);
  EXPECT_EQ(options.pngLevel, 9);
  EXPECT_EQ(options.lossless, Lossless::trim);
  EXPECT_EQ(options.background, kGreen);
}

}  // namespace
}  // namespace rasterkit
