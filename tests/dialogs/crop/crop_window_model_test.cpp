#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/crop/crop_window_model.h>

#include "tests/dialogs/bitmapframe/recording_view.h"
#include "tests/dialogs/crop/crop_facts.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

/// A plan in a box of 300 x 300: at half its size it lies at (0, 50) to (300, 250).
class Window {
 public:
  explicit Window(const CropFacts& facts)
      : bitmap(GradientBitmap(pf24bit, facts.width, facts.height)),
        view(300, 300),
        tool(view, kEditorCropRules) {
    tool.SetOrgBitmap(&bitmap);
    model.emplace(tool, facts);
  }
  CropWindowModel* operator->() { return &*model; }
  void ExpectRect(int left, int top, int right, int bottom) {
    const TRect rect = model->Rect();
    EXPECT_EQ(rect.Left, left);
    EXPECT_EQ(rect.Top, top);
    EXPECT_EQ(rect.Right, right);
    EXPECT_EQ(rect.Bottom, bottom);
  }
  double Value(CropField field) { return model->Number(field).value; }
  void Drag(int fromX, int fromY, int toX, int toY) {
    tool.MouseDown(CutButton::left, {true}, fromX, fromY);
    tool.MouseMove({true}, toX, toY);
    tool.MouseUp(CutButton::left, toX, toY);
  }

  TBitmap bitmap;
  RecordingView view;
  BmpCutModel tool;
  std::optional<CropWindowModel> model;
};

TEST(CropWindowModel, Numbers_Should_FollowADragAtEachStep_InEveryUnit) {
  Window window(FactsOfAPlan());
  window->ChooseUnit(LengthUnit::millimeters);
  window.tool.MouseDown(CutButton::left, {true}, 50, 100);
  window.tool.MouseMove({true}, 100, 150);
  EXPECT_DOUBLE_EQ(window.Value(CropField::left), 10);
  EXPECT_DOUBLE_EQ(window.Value(CropField::width), 10);
  EXPECT_EQ(window->SizeText(), "100 x 100 pixels, 30 kB");
  window.tool.MouseMove({true}, 110, 150);
  EXPECT_DOUBLE_EQ(window.Value(CropField::width), 12);
  EXPECT_EQ(window->SizeText(), "120 x 100 pixels, 36 kB");
  EXPECT_EQ(window->RatioText(), "Ratio 6:5");
  window->ChooseUnit(LengthUnit::map);
  EXPECT_DOUBLE_EQ(window.Value(CropField::left), 1050);
  EXPECT_DOUBLE_EQ(window.Value(CropField::top), 1950);
  EXPECT_DOUBLE_EQ(window.Value(CropField::width), 60);
  window->ChooseUnit(LengthUnit::percent);
  EXPECT_DOUBLE_EQ(window.Value(CropField::width), 20);
  EXPECT_DOUBLE_EQ(window.Value(CropField::top), 25);
}

TEST(CropWindowModel, TypedNumbers_Should_GoToTheNearestCorner_AndSayTheRounding) {
  Window window(FactsOfAPlan());
  window->ChooseUnit(LengthUnit::millimeters);
  window->Type(CropField::left, 10.04);
  window.ExpectRect(100, 0, 600, 400);
  EXPECT_EQ(window->RoundingText(), "10.04 became 10.00 mm, the nearest pixel corner");
  window->Type(CropField::width, 20);
  window.ExpectRect(100, 0, 300, 400);
  EXPECT_EQ(window->RoundingText(), "");
  window->Type(CropField::height, 0);
  window.ExpectRect(100, 0, 300, 1);
  EXPECT_EQ(window->RoundingText(), "0.00 became 0.10 mm, the nearest pixel corner");
  window.tool.MoveCutRect(1, 1);
  EXPECT_EQ(window->RoundingText(), "") << "it says nothing about another rectangle";
}

TEST(CropWindowModel, HalvesOfAPixel_Should_GoToTheEvenCorner) {
  Window window(FactsOfAPlan());
  window->ChooseUnit(LengthUnit::map);
  window->Type(CropField::left, 1001.25);
  EXPECT_EQ(window->Rect().Left, 2);
  window->Type(CropField::left, 1001.75);
  EXPECT_EQ(window->Rect().Left, 4);
}

TEST(CropWindowModel, MapNumbers_Should_MoveTheCorner) {
  Window window(FactsOfAPlan());
  window->ChooseUnit(LengthUnit::map);
  window.tool.SetBmpCutRect({100, 100, 200, 200});
  window->Type(CropField::top, 1980.1);
  window.ExpectRect(100, 40, 200, 140);
  EXPECT_EQ(window->RoundingText(), "1980.10 became 1980.00 m, the nearest pixel corner");
  window->Type(CropField::left, 1250);
  window.ExpectRect(500, 40, 600, 140);
  window->Type(CropField::left, 1275);
  window.ExpectRect(550, 40, 600, 140);
  window->Type(CropField::width, 1e9);
  window.ExpectRect(550, 40, 600, 140);
}

TEST(CropWindowModel, ATurnedPicture_Should_HaveTrueCorners_AndSidesAlongThePicture) {
  Window window(TurnedFacts());
  window->ChooseUnit(LengthUnit::map);
  window.tool.SetBmpCutRect({100, 50, 300, 150});
  EXPECT_NEAR(window.Value(CropField::left), 1000 + 0.4 * 99.5 + 0.6 * 49.5, 1e-9);
  EXPECT_NEAR(window.Value(CropField::top), 2000 + 0.3 * 99.5 - 0.8 * 49.5, 1e-9);
  EXPECT_DOUBLE_EQ(window.Value(CropField::width), 100);
  EXPECT_DOUBLE_EQ(window.Value(CropField::height), 100);
  // 10 to the east at the same y: 16 columns and 6 rows of it.
  window->Type(CropField::left, window.Value(CropField::left) + 10);
  window.ExpectRect(116, 56, 316, 156);
  window->Type(CropField::width, 50);
  window.ExpectRect(116, 56, 216, 156);
  EXPECT_EQ(window->Answer().unit, LengthUnit::pixels);
}

TEST(CropWindowModel, Units_Should_BePaleWithoutWhatTheyNeed) {
  Window window(PlainFacts());
  window->ChooseUnit(LengthUnit::millimeters);
  EXPECT_EQ(window->Unit(), LengthUnit::pixels);
  window->StartUnit(LengthUnit::map);
  EXPECT_EQ(window->Unit(), LengthUnit::pixels);
  window->ChooseUnit(LengthUnit::percent);
  EXPECT_EQ(window->Unit(), LengthUnit::percent);
  EXPECT_EQ(window->PaperText(), "No resolution is stated");
  EXPECT_EQ(window->MapText(), "No position on a map is stated");
}

TEST(CropWindowModel, TheUserMaySayTheUnitOfTheMap_OnlyWhen_NothingStatesIt) {
  Window stated(FactsOfAPlan());
  EXPECT_FALSE(stated->MayChooseMapUnit());
  stated->ChooseMapUnit(MapUnitNamed("ft"));
  EXPECT_EQ(stated->Facts().mapUnit.symbol, "m");
  Window silent(TurnedFacts());
  EXPECT_TRUE(silent->MayChooseMapUnit());
  EXPECT_FALSE(KnowsRatio(silent->Facts(), RatioKind::paper));
  silent->ChooseMapUnit(MapUnitNamed("ft"));
  EXPECT_THAT(silent->MapText(), HasSubstr(" ft"));
  EXPECT_TRUE(KnowsRatio(silent->Facts(), RatioKind::paper));
  CropRatio sheet{.kind = RatioKind::paper};
  silent->ChooseRatio(sheet);
  EXPECT_TRUE(silent.tool.Shape().IsFixed());
  silent->ChooseMapUnit(MapUnitNamed("°"));
  EXPECT_EQ(silent->Ratio().kind, RatioKind::any);
  EXPECT_FALSE(silent.tool.Shape().IsFixed());
  EXPECT_FALSE(Window(PlainFacts())->MayChooseMapUnit()) << "there is no map";
}

TEST(CropWindowModel, Ratio_Should_ReshapeTheRectangle_AndHoldDragsAndTypedNumbers) {
  Window window(FactsOfAPlan());
  window->ChooseRatio({.kind = RatioKind::square});
  window.ExpectRect(100, 0, 500, 400);
  window->Type(CropField::width, 100);
  window.ExpectRect(100, 0, 200, 100);
  window->Type(CropField::height, 50);
  window.ExpectRect(100, 0, 150, 50);
  window->Type(CropField::left, 590);
  window.ExpectRect(550, 0, 600, 50);
  window.Drag(20, 70, 60, 80);
  window.ExpectRect(40, 40, 120, 120);
  window->ChooseRatio({.kind = RatioKind::any});
  window.ExpectRect(40, 40, 120, 120);
  window.tool.UndoCutRect();
  window.ExpectRect(550, 0, 600, 50);
}

TEST(CropWindowModel, RatioAtTheStart_Should_LeaveTheWholePicture) {
  Window window(FactsOfAPlan());
  window->StartRatio({.kind = RatioKind::square});
  EXPECT_FALSE(window.tool.CutRectExists());
  Window plain(PlainFacts());
  plain->StartRatio({.kind = RatioKind::paper});
  EXPECT_EQ(plain->Ratio().kind, RatioKind::any) << "no map";
}

TEST(CropWindowModel, APaperSheet_Should_HaveItsSize_AndSayIfItDoesNotFit) {
  Window window(FactsOfAPlan());
  window->ChooseRatio({.kind = RatioKind::paper, .paper = 3, .scale = 500});
  EXPECT_EQ(window->Rect().Right - window->Rect().Left, 420);
  EXPECT_EQ(window->Rect().Bottom - window->Rect().Top, 297);
  EXPECT_FALSE(window->MayType(CropField::width));
  EXPECT_TRUE(window->MayType(CropField::left));
  window->Type(CropField::width, 10);
  EXPECT_EQ(window->Rect().Right - window->Rect().Left, 420);
  window->Type(CropField::left, 1e6);
  EXPECT_EQ(window->Rect().Right, 600);
  EXPECT_EQ(window->Rect().Right - window->Rect().Left, 420);
  EXPECT_EQ(window->RoundingText(), "1000000 became 180 px, the nearest pixel corner");
  window->ChooseRatio({.kind = RatioKind::paper, .paper = 0, .scale = 500});
  EXPECT_EQ(window->RoundingText(), "The sheet needs 1189 x 841 pixels, more than the picture has");
  window.ExpectRect(0, 0, 600, 400);
}

TEST(CropWindowModel, Steps_Should_ChangeNumbersByPixels_UpwardOnTheMap) {
  Window window(FactsOfAPlan());
  window.tool.SetBmpCutRect({100, 100, 200, 200});
  window->Step(CropField::left, 3);
  window.ExpectRect(103, 100, 203, 200);
  window->Step(CropField::height, -10);
  window.ExpectRect(103, 100, 203, 190);
  window->ChooseUnit(LengthUnit::map);
  const double top = window.Value(CropField::top);
  window->Step(CropField::top, 1);
  EXPECT_DOUBLE_EQ(window.Value(CropField::top), top + 0.5);
  window.ExpectRect(103, 99, 203, 189);
}

TEST(CropWindowModel, Texts_Should_TellResolutionCornersAndMouse) {
  Window window(FactsOfAPlan());
  window.tool.SetBmpCutRect({100, 100, 300, 200});
  EXPECT_EQ(window->PaperText(), "254 dpi: 20.0 x 10.0 mm on paper");
  EXPECT_EQ(
      window->MapText(),
      "On the map: from 1050.00, 1950.00 to 1150.00, 1900.00; the sides are 100.00 x 50.00 m");
  EXPECT_EQ(window->MouseText(std::nullopt), "Mouse: not on the picture");
  EXPECT_EQ(window->MouseText(TPoint{10, 20}), "Mouse: 10, 20 px; 1005.00, 1990.00 m");
  window->ChooseUnit(LengthUnit::millimeters);
  EXPECT_EQ(window->MouseText(TPoint{10, 20}),
            "Mouse: 10, 20 px; 1.00, 2.00 mm; 1005.00, 1990.00 m");
  EXPECT_EQ(Window(PlainFacts())->MouseText(TPoint{10, 20}), "Mouse: 10, 20 px");
  EXPECT_EQ(window->RatioText(), "Ratio 2:1");
  window.tool.SetBmpCutRect({0, 0, 599, 397});
  EXPECT_EQ(window->RatioText(), "Ratio 1.509:1");
}

}  // namespace
}  // namespace rasterkit::test
