// What the window answers, and the pixels that a replay takes.

#include <random>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/crop/crop_window_model.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>

#include "tests/dialogs/bitmapframe/recording_view.h"

namespace rasterkit::test {
namespace {

/// A picture of black pixels with a resolution and a position.
class Stage {
 public:
  Stage(int width, int height, const Resolution& dpi, const std::optional<Affine>& position) {
    pixels.ResetPixels(pf1bit, width, height);
    auto rows = std::make_unique<TBitmap>();
    rows->ResetPixels(pf1bit, width, height);
    picture = Picture::Of(std::move(rows));
    if (dpi.IsKnown()) picture->Edit({.resolution = dpi});
    if (position) picture->Apply(PlaceStep{*position});
    tool.SetOrgBitmap(&pixels);
    model.emplace(tool, CropFactsOf(pixels, *picture));
  }
  /// The pixels that the answer leads to are those that are shown.
  void ExpectExact() {
    const RecipeCrop answer = model->Answer();
    const CropStep kept = PixelsOf(answer, *picture);
    const TRect shown = model->Rect();
    EXPECT_EQ(kept.left, shown.Left);
    EXPECT_EQ(kept.top, shown.Top);
    EXPECT_EQ(kept.width, shown.Right - shown.Left);
    EXPECT_EQ(kept.height, shown.Bottom - shown.Top);
  }

  TBitmap pixels;
  std::optional<Picture> picture;
  RecordingView view;
  BmpCutModel tool{view, kEditorCropRules};
  std::optional<CropWindowModel> model;
};

constexpr LengthUnit kEveryUnit[] = {LengthUnit::pixels, LengthUnit::percent,
                                     LengthUnit::millimeters, LengthUnit::map};

/// Positions of every kind: straight, rows running north, turned by a quarter, turned, sheared.
Affine RandomPosition(std::mt19937& random) {
  const auto real = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  const double pixel = std::pow(10, real(-5, 2));
  Affine position{pixel, 0, 0, -pixel * real(0.5, 2), real(-1e6, 1e6), real(-1e7, 1e7)};
  switch (std::uniform_int_distribution<int>(0, 4)(random)) {
    case 0:
      position.yPerRow = -position.yPerRow;
      break;
    case 1:
      position.xPerRow = position.xPerColumn;
      position.yPerColumn = -position.yPerRow;
      position.xPerColumn = position.yPerRow = 0;
      break;
    case 2:
      position.xPerRow = pixel * real(-1, 1);
      position.yPerColumn = pixel * real(-1, 1);
      break;
    default:
      break;
  }
  return position;
}

TEST(CropAnswer, Should_LeadToTheRectangleShown_InEveryUnit) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto pick = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) {
    const int width = pick(1, 3000), height = pick(1, 3000);
    const Resolution dpi{pick(1, 24000) / 10.0, pick(1, 24000) / 10.0};
    Stage stage(width, height, dpi, RandomPosition(random));
    for (const LengthUnit unit : kEveryUnit) {
      stage.model->ChooseUnit(unit);
      for (int j = 0; j < 10; ++j) {
        const int left = pick(0, width - 1), top = pick(0, height - 1);
        const TRect rect{left, top, pick(left + 1, width), pick(top + 1, height)};
        stage.tool.SetBmpCutRect(RDRect(rect));
        SCOPED_TRACE(std::to_string(i) + ": " + std::to_string(left) + " " + std::to_string(top) +
                     " " + std::to_string(rect.Right) + " " + std::to_string(rect.Bottom) + " of " +
                     std::to_string(width) + " x " + std::to_string(height));
        stage.ExpectExact();
        const CropNumber number = stage.model->Number(CropField::left);
        const double typed =
            std::uniform_real_distribution<double>(number.minimum, number.maximum)(random);
        stage.model->Type(CropField::left, typed);
        stage.ExpectExact();
        stage.model->Type(CropField::height,
                          stage.model->Number(CropField::height).value * pick(1, 20) / 10.0);
        stage.ExpectExact();
      }
    }
  }
}

TEST(CropAnswer, Should_BeInPixels_When_Drawn) {
  Stage stage(600, 400, {254, 254}, Affine{0.5, 0, 0, -0.5, 1000.25, 1999.75});
  stage.model->StartUnit(LengthUnit::map);
  stage.tool.SetBmpCutRect({10, 20, 110, 70});
  EXPECT_EQ(stage.model->Answer(), (RecipeCrop{LengthUnit::pixels, 10, 20, 110, 70}));
}

TEST(CropAnswer, Should_HaveTheNumbersShown_InTheUnitTyped) {
  Stage stage(600, 400, {254, 254}, Affine{0.5, 0, 0, -0.5, 1000.25, 1999.75});
  stage.model->StartUnit(LengthUnit::millimeters);
  stage.model->Type(CropField::left, 1.04);
  stage.model->Type(CropField::width, 20);
  EXPECT_EQ(stage.model->Answer(), (RecipeCrop{LengthUnit::millimeters, 1, 0, 21, 40}));
  // Drawn afterwards it is pixels again; undone, it is what was typed.
  stage.tool.MoveCutRect(1, 0);
  EXPECT_EQ(stage.model->Answer().unit, LengthUnit::pixels);
  stage.tool.UndoCutRect();
  EXPECT_EQ(stage.model->Answer().unit, LengthUnit::millimeters);
}

TEST(CropAnswer, Should_HaveTheUnitThatTheUserChose) {
  Stage stage(600, 400, {254, 254}, Affine{0.5, 0, 0, -0.5, 1000.25, 1999.75});
  stage.tool.SetBmpCutRect({10, 20, 110, 70});
  stage.model->ChooseUnit(LengthUnit::map);
  EXPECT_EQ(stage.model->Answer(), (RecipeCrop{LengthUnit::map, 1005, 1990, 1055, 1965}));
}

TEST(CropAnswer, Should_BeTheStart_When_NothingChanged) {
  Stage stage(600, 400, {254, 254}, {});
  const RecipeCrop start{LengthUnit::percent, 10.01, 10, 50, 50, Outside::clip};
  stage.model->Start(start, {60, 40, 300, 200});
  EXPECT_EQ(stage.model->Answer(), start);
  EXPECT_FALSE(stage.tool.CanUndo());
  stage.tool.MoveCutRect(1, 0);
  EXPECT_EQ(stage.model->Answer(),
            (RecipeCrop{LengthUnit::pixels, 61, 40, 301, 200, Outside::clip}));
}

TEST(CropAnswer, Should_BeClippedAsTheStart_When_ANumberIsTyped) {
  Stage stage(600, 400, {254, 254}, {});
  stage.model->Start({LengthUnit::pixels, 10, 20, 110, 70, Outside::clip}, {10, 20, 110, 70});
  stage.model->Type(CropField::left, 30);
  EXPECT_EQ(stage.model->Answer(),
            (RecipeCrop{LengthUnit::pixels, 30, 20, 130, 70, Outside::clip}));
  stage.model->Step(CropField::width, 5);
  EXPECT_EQ(stage.model->Answer(),
            (RecipeCrop{LengthUnit::pixels, 30, 20, 135, 70, Outside::clip}));
}

TEST(CropAnswer, Should_BeTheWhole_When_ThereIsNoRectangle) {
  Stage stage(600, 400, {}, {});
  EXPECT_EQ(stage.model->Answer(), (RecipeCrop{LengthUnit::pixels, 0, 0, 600, 400}));
}

}  // namespace
}  // namespace rasterkit::test
