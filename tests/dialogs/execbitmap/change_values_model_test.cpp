#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/execbitmap/change_values_model.h>

#include "tests/reference/change_values_reference.h"
#include "tests/reference/contrast_brightness_reference.h"
#include "tests/reference/gray_mono.h"
#include "tests/support/copy_of.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::CopyOf;
using test::PaperBitmap;
using test::SamePixels;
using enum ValueControl;

TBitmap Photo() {
  std::mt19937 random(62);
  return PaperBitmap(pf24bit, 33, 17, random, 1);
}

class ChangeValuesModelTest : public testing::Test {
 protected:
  ChangeValuesModelTest() : photo(Photo()), model(photo) {
    model.OnRepaint = [this] { ++repaints; };
    model.OnValues = [this] {
      ++shown;
      EXPECT_TRUE(model.Busy());
    };
  }

  void Start(int32_t operation, const TChgBmpValuesRec& values = {}) {
    model.Load(values);
    model.SetOperation(operation);
  }

  /// The result of the model for the picture.
  TBitmap Result() const {
    TBitmap result = CopyOf(photo);
    model.ApplyTo(result);
    return result;
  }

  TBitmap photo;
  ChangeValuesModel model;
  int repaints = 0, shown = 0;
};

TEST_F(ChangeValuesModelTest, UntilRefresh_Should_BrightenFourTimesAndIgnoreTheOthers) {
  Start(0, {30, -20, 10, 60, 40, 20, 0});
  EXPECT_EQ(model.Slots(), (TaskSlots{1, 1, 1, 1}));
  TBitmap expected = CopyOf(photo);
  for (int i = 0; i < 4; ++i) reference::Helligkeit(expected, 20, 1);
  EXPECT_TRUE(SamePixels(expected, Result()));
  model.Change(contrast, 90);
  model.Change(sharpen, -90);
  model.Change(red, -100);
  EXPECT_EQ(model.Slots(), (TaskSlots{1, 1, 1, 1}));
  EXPECT_TRUE(SamePixels(expected, Result()));
}

TEST_F(ChangeValuesModelTest, AfterRefresh_Should_ApplyContrastFirst_When_ItWasMovedFirst) {
  Start(0);
  model.Reset();
  EXPECT_TRUE(SamePixels(photo, Result()));
  model.Change(contrast, 40);
  model.Change(lightness, 30);
  model.Change(contrast, 50);
  EXPECT_EQ(model.Slots(), (TaskSlots{2, 1, 0, 0}));
  TBitmap expected = CopyOf(photo);
  reference::Kontrast(expected, 50, 1);
  reference::Helligkeit(expected, 30, 1);
  EXPECT_TRUE(SamePixels(expected, Result()));
}

TEST_F(ChangeValuesModelTest, AllFourTasks_Should_RunInTheOrderOfTheirSlots) {
  Start(0);
  model.Reset();
  model.Change(green, 35);
  model.Change(sharpen, 70);
  model.Change(red, -15);
  model.Change(lightness, -25);
  model.Change(contrast, 45);
  EXPECT_EQ(model.Slots(), (TaskSlots{4, 3, 1, 2}));
  TBitmap expected = CopyOf(photo);
  reference::ShiftColors(expected, -15, 35, 0);
  reference::Sharpen(expected, 70);
  reference::Helligkeit(expected, -25, 1);
  reference::Kontrast(expected, 45, 1);
  EXPECT_TRUE(SamePixels(expected, Result()));
}

TEST_F(ChangeValuesModelTest, Loading_Should_TakeEveryFieldButTheGrayValue) {
  Start(0, {1, -2, 3, -4, 5, -6, 77});
  EXPECT_EQ(model.Value(red), 1);
  EXPECT_EQ(model.Value(green), -2);
  EXPECT_EQ(model.Value(blue), 3);
  EXPECT_EQ(model.Value(sharpen), -4);
  EXPECT_EQ(model.Value(contrast), 5);
  EXPECT_EQ(model.Value(lightness), -6);
  EXPECT_EQ(model.Value(grayValue), 0);
  TChgBmpValuesRec values;
  values.GrayValue = 99;
  model.Store(values);
  EXPECT_EQ(values.Green, -2);
  EXPECT_EQ(values.Brightness, -6);
  EXPECT_EQ(values.GrayValue, 99);
}

TEST_F(ChangeValuesModelTest, Loading_Should_KeepNegativeColors_When_TheirRangeBeginsAtZero) {
  model.Load({-50, -60, -70, 0, 0, 0, 0});
  EXPECT_EQ(model.Range(red), (ValueRange{0, 255}));
  EXPECT_EQ(model.Value(red), -50);
  model.SetOperation(0);
  EXPECT_EQ(model.Range(red), (ValueRange{-100, 100}));
  EXPECT_EQ(model.Value(red), -50);
  EXPECT_EQ(model.Value(blue), -70);
}

TEST_F(ChangeValuesModelTest, Loading_Should_CutWhatIsOutOfRange) {
  Start(0, {300, -300, 100, 101, -101, INT32_MAX, 0});
  EXPECT_EQ(model.Value(red), 100);
  EXPECT_EQ(model.Value(green), -100);
  EXPECT_EQ(model.Value(sharpen), 100);
  EXPECT_EQ(model.Value(contrast), -100);
  EXPECT_EQ(model.Value(lightness), 100);
}

TEST_F(ChangeValuesModelTest, Operation0_Should_HideTheGrayValueAndTheSwatch) {
  Start(0);
  EXPECT_TRUE(model.ShowsEditingPanel());
  EXPECT_FALSE(model.ShowsGrayValue());
  EXPECT_FALSE(model.ShowsSwatch());
  EXPECT_NE(model.Caption(), "Select gray value");
  EXPECT_EQ(model.Range(lightness), (ValueRange{-100, 100}));
}

TEST_F(ChangeValuesModelTest, Operation5_Should_StartAt125WithItsOwnCaptionRangeAndTexts) {
  Start(5);
  EXPECT_EQ(model.Caption(), "Select gray value");
  EXPECT_EQ(model.Value(grayValue), 125);
  EXPECT_EQ(model.Range(grayValue), (ValueRange{0, 255}));
  EXPECT_EQ(model.TextsOfGrayValue().LabVon, "0");
  EXPECT_EQ(model.TextsOfGrayValue().LabMitte, "");
  EXPECT_EQ(model.TextsOfGrayValue().LabBis, "255");
  EXPECT_TRUE(model.ShowsGrayValue());
  EXPECT_FALSE(model.ShowsEditingPanel());
  TBitmap expected = CopyOf(photo);
  reference::ColorBmpTo1Bit(expected, 125, 0, 0, 0, 255, 255, 255);
  EXPECT_TRUE(SamePixels(expected, Result()));
}

TEST_F(ChangeValuesModelTest, Operation5_Should_FollowTheThresholdAndNotReturnIt) {
  Start(5, {1, 2, 3, 4, 5, 6, 7});
  model.Change(grayValue, 200);
  TBitmap expected = CopyOf(photo);
  reference::ColorBmpTo1Bit(expected, 200, 0, 0, 0, 255, 255, 255);
  EXPECT_TRUE(SamePixels(expected, Result()));
  TChgBmpValuesRec values;
  model.Store(values);
  EXPECT_EQ(values.GrayValue, 0);
  EXPECT_EQ(values.Red, 1);
}

TEST_F(ChangeValuesModelTest, TheGrayValue_Should_BeNoTask) {
  Start(5);
  model.Reset();
  model.Change(grayValue, 200);
  EXPECT_EQ(model.Slots(), TaskSlots{});
}

TEST_F(ChangeValuesModelTest, Operation5_Should_BeAllWhite_When_Refreshed) {
  Start(5);
  model.Reset();
  EXPECT_EQ(model.Value(grayValue), 0);
  TBitmap expected = CopyOf(photo);
  reference::ColorBmpTo1Bit(expected, 0, 0, 0, 0, 255, 255, 255);
  EXPECT_TRUE(SamePixels(expected, Result()));
}

TEST_F(ChangeValuesModelTest, OtherOperations_Should_ChangeNothingAndShowNoPanel) {
  for (const int32_t operation : {1, 2, 3, 4, 6, -1, INT32_MAX}) {
    Start(operation, {50, 50, 50, 50, 50, 50, 50});
    EXPECT_FALSE(model.ShowsEditingPanel());
    EXPECT_FALSE(model.ShowsGrayValue());
    EXPECT_EQ(model.Caption(), "Change values");
    EXPECT_TRUE(SamePixels(photo, Result())) << operation;
  }
}

TEST_F(ChangeValuesModelTest, TheSwatch_Should_ShowTheColorOfTheThreeNumbers) {
  model.Change(red, 200);
  model.Change(green, 100);
  model.Change(blue, 50);
  EXPECT_TRUE(model.ShowsSwatch());
  EXPECT_EQ(model.SwatchColor(), RGB(200, 100, 50));
  model.SetTBcolorMinMax(0, 255);
  EXPECT_TRUE(model.ShowsSwatch());
  model.SetTBcolorMinMax(0, 254);
  EXPECT_FALSE(model.ShowsSwatch());
}

TEST_F(ChangeValuesModelTest, Tags_Should_BeTheTaskCodes) {
  EXPECT_EQ(model.Tag(lightness), 1);
  EXPECT_EQ(model.Tag(contrast), 2);
  EXPECT_EQ(model.Tag(sharpen), 3);
  for (const ValueControl color : {red, green, blue}) EXPECT_EQ(model.Tag(color), 4);
}

TEST_F(ChangeValuesModelTest, Changes_Should_BeShownOnceAndPaintedOnce) {
  Start(0);
  model.Reset();
  shown = repaints = 0;
  model.Change(lightness, 12);
  EXPECT_EQ(shown, 1);
  EXPECT_EQ(repaints, 1);
  model.Change(lightness, 12);
  EXPECT_EQ(shown, 1);
  EXPECT_EQ(repaints, 1);
  model.Reset();
  EXPECT_EQ(shown, 2);
  EXPECT_EQ(repaints, 2);
}

TEST_F(ChangeValuesModelTest, EveryOperation_Should_BePaintedFromItsStart) {
  for (const int32_t operation : {0, 5, 3}) {
    model.Load({});
    repaints = 0;
    model.SetOperation(operation);
    EXPECT_EQ(repaints, 1) << operation;
  }
}

TEST_F(ChangeValuesModelTest, Changes_Should_StayInTheirRange) {
  Start(0);
  model.Change(contrast, 1000);
  model.Change(blue, -1000);
  EXPECT_EQ(model.Value(contrast), 100);
  EXPECT_EQ(model.Value(blue), -100);
}

TEST_F(ChangeValuesModelTest, WhatComesBackWhileBusy_Should_BeIgnored) {
  Start(0);
  model.Reset();
  model.OnValues = [this] {
    model.Change(sharpen, 50);
    model.ExecOperation();
  };
  repaints = 0;
  model.Change(lightness, 10);
  EXPECT_EQ(model.Value(sharpen), 0);
  EXPECT_EQ(model.Slots(), (TaskSlots{1, 0, 0, 0}));
  EXPECT_EQ(repaints, 1);
  EXPECT_FALSE(model.Busy());
}

TEST_F(ChangeValuesModelTest, AddTag_Should_StopAtTheFirstEmptySlot) {
  Start(0);
  model.Reset();
  for (const int32_t code : {3, 3, 1, 3, 1, 4}) model.AddTag(code);
  EXPECT_EQ(model.Slots(), (TaskSlots{3, 1, 4, 0}));
  model.AddTag(2);
  model.AddTag(7);
  EXPECT_EQ(model.Slots(), (TaskSlots{3, 1, 4, 2}));
}

TEST_F(ChangeValuesModelTest, Previews_Should_ShowTheSamePartOfBothPictures) {
  Start(0);
  model.Reset();
  model.Change(sharpen, 80);
  model.Change(red, 20);
  model.InitBmpPos(10, 9);
  const TBitmap changed = Result();
  const TBitmap before = model.OriginalPreview(clWhite), after = model.ChangedPreview(clWhite);
  ASSERT_EQ(before.Width(), 10);
  ASSERT_EQ(after.Height(), 9);
  const TPoint offset = model.Position().Offset();
  EXPECT_EQ(offset.X, 12);
  for (int y = 0; y < 9; ++y)
    for (int x = 0; x < 10; ++x) {
      EXPECT_EQ(before.PixelColor(x, y), photo.PixelColor(x + offset.X, y + offset.Y));
      EXPECT_EQ(after.PixelColor(x, y), changed.PixelColor(x + offset.X, y + offset.Y));
    }
}

}  // namespace
}  // namespace rasterkit
