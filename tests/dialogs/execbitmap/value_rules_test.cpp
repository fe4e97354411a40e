#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/dialogs/execbitmap/value_rules.h>
#include <rasterkit/pictures/picture.h>

#include "tests/support/copy_of.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::CopyOf;
using test::SamePixels;
using enum ValueControl;

constexpr unsigned kSeed = 4711;

TBitmap Photo() {
  std::mt19937 random(kSeed);
  return test::PaperBitmap(pf24bit, 60, 40, random, 1);
}

/// One model for each set of rules, both with the same picture.
class ValueRulesTest : public testing::Test {
 protected:
  TBitmap photo = Photo();
  ChangeValuesModel entry{photo};
  ChangeValuesModel editor{photo, kEditorValueRules};

  void Load(const TChgBmpValuesRec& values) {
    for (ChangeValuesModel* model : {&entry, &editor}) {
      model->Load(values);
      model->SetOperation(kOperationValues);
      model->InitBmpPos(photo.Width(), photo.Height());
    }
  }
  static TBitmap Shown(const ChangeValuesModel& model) { return model.ChangedPreview(clWhite); }
  /// The picture after brightness alone, four times.
  TBitmap FourTimesBrighter(int percent) const {
    TBitmap bitmap = CopyOf(photo);
    ValueChange change;
    change.taskSlots = {kTaskBrightness, kTaskBrightness, kTaskBrightness, kTaskBrightness};
    change.lightness = percent;
    change.ApplyTo(bitmap);
    return bitmap;
  }
  TBitmap Stepped(const ColorChange& step) const {
    Picture picture = Picture::Of(photo.Clone());
    picture.Change(step);
    return std::move(*picture.Bitmap());
  }
};

TEST_F(ValueRulesTest, DefaultRules_Should_BeThoseOfTheEntries) {
  EXPECT_EQ(&entry.Rules(), &kEntryValueRules);
  EXPECT_EQ(&editor.Rules(), &kEditorValueRules);
}

TEST_F(ValueRulesTest, Brightness_Should_CountFourTimesInTheEntry_OnceInTheEditor) {
  TChgBmpValuesRec values;
  values.Brightness = 20;
  Load(values);
  EXPECT_TRUE(test::SameColors(FourTimesBrighter(20), Shown(entry)));
  EXPECT_TRUE(test::SameColors(Stepped(AdjustColors{20}), Shown(editor)));
  EXPECT_FALSE(test::SameColors(Shown(entry), Shown(editor)));
}

TEST_F(ValueRulesTest, OtherValues_Should_ActOnlyAfterAResetInTheEntry_AtOnceInTheEditor) {
  const TBitmap plain = CopyOf(photo);
  for (const ValueControl control : {contrast, sharpen, red, green, blue}) {
    Load({});
    entry.Change(control, 40);
    editor.Change(control, 40);
    EXPECT_TRUE(test::SameColors(plain, Shown(entry))) << static_cast<int>(control);
    EXPECT_FALSE(test::SameColors(plain, Shown(editor))) << static_cast<int>(control);
    entry.Reset();
    entry.Change(control, 40);
    EXPECT_FALSE(test::SameColors(plain, Shown(entry))) << static_cast<int>(control);
  }
}

TEST_F(ValueRulesTest, AllValues_Should_ActOnceInTheOrderOfTheStep_WhateverTheOrderOfTheChanges) {
  Load({});
  const AdjustColors step{-15, 30, 50, 10, -20, 5};
  editor.Change(blue, step.blue);
  editor.Change(sharpen, step.sharpen);
  editor.Change(contrast, step.contrast);
  editor.Change(red, step.red);
  editor.Change(lightness, step.brightness);
  editor.Change(green, step.green);
  EXPECT_EQ(editor.Slots(), (TaskSlots{kTaskBrightness, kTaskContrast, kTaskSharpen, kTaskColors}));
  EXPECT_TRUE(test::SameColors(Stepped(step), Shown(editor)));
  editor.Reset();
  EXPECT_TRUE(test::SameColors(photo, Shown(editor)));
  editor.Change(contrast, 30);
  EXPECT_TRUE(test::SameColors(Stepped(AdjustColors{0, 30}), Shown(editor))) << "after a reset";
}

TEST_F(ValueRulesTest, Thresholds_Should_ReachFurtherInTheEditor) {
  for (ChangeValuesModel* model : {&entry, &editor}) {
    model->SetOperation(kOperationBlackAndWhite);
    EXPECT_EQ(model->Value(grayValue), 125);
    model->Change(grayValue, 1000);
  }
  EXPECT_EQ(entry.Value(grayValue), 255);
  EXPECT_EQ(editor.Value(grayValue), 256);
  EXPECT_EQ(entry.TextsOfGrayValue().LabBis, "255");
  EXPECT_EQ(editor.TextsOfGrayValue().LabBis, "256");
  entry.Reset();
  editor.Reset();
  EXPECT_EQ(entry.Value(grayValue), 0);
  EXPECT_EQ(editor.Value(grayValue), 125);
}

TEST_F(ValueRulesTest, TheButton_Should_SayWhatItDoes) {
  EXPECT_EQ(entry.TextOfReset(), "Refresh");
  EXPECT_EQ(editor.TextOfReset(), "Reset");
}

TEST_F(ValueRulesTest, SetValues_Should_ClampAndRepaintOnce) {
  Load({});
  int repaints = 0;
  editor.OnRepaint = [&] { ++repaints; };
  editor.SetValues({500, -500, 3, 4, 5, 6, 7});
  EXPECT_EQ(repaints, 1);
  EXPECT_EQ(editor.Values(), (ControlValues{100, -100, 3, 4, 5, 6, 7}));
}

}  // namespace
}  // namespace rasterkit
