#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgbitmap/graphics_paras_model.h>

#include "tests/dialogs/savedlgbitmap/paras_view.h"

namespace rasterkit {
namespace {

using test::ParasView;

constexpr ParasGroup kGroups[] = {ParasGroup::type,      ParasGroup::resolution,
                                  ParasGroup::bitmap,    ParasGroup::jpeg,
                                  ParasGroup::pixelSize, ParasGroup::millimeters};

class GraphicsParasModelTest : public testing::Test {
 protected:
  /// As EditGraphicsParas opens it.
  void Open(const TrecSaveBitmap& rec, float width = 0, float height = 0) {
    model.SetSizeMM(width, height);
    model.SetSaveOptions(rec);
    model.FormShow();
  }
  void OpenPixels(const TrecSaveBitmap& rec, int width, int height) {
    model.HideGroup(ParasGroup::resolution);
    model.HideGroup(ParasGroup::millimeters);
    model.SetBmpSize(width, height);
    model.SetSaveOptions(rec);
    model.FormShow();
  }

  ParasView view;
  GraphicsParasModel model{view};
};

// The record.

TEST_F(GraphicsParasModelTest, ARecord_Should_BeShownAndComeBackAsItWas) {
  const TrecSaveBitmap rec{10, 8, 300, 2, 55};
  Open(rec, 210, 297);
  EXPECT_EQ(view.type, 3);
  EXPECT_EQ(view.colors, 2);
  EXPECT_EQ(view.dpi, 300);
  EXPECT_EQ(view.trackBar, 55);
  EXPECT_EQ(view.texts[ParasText::LabComp], "55");
  EXPECT_EQ(model.GetSaveOptions(), rec);
}

TEST_F(GraphicsParasModelTest, WhatTheUserSets_Should_BeInTheRecord) {
  Open({1, 24, 96, 1, 90});
  model.CoBoGraphTypeChange(1);
  model.SpEdDpiChange(150);
  model.CoBoColorsChange(0);
  model.TrackBarCompChange(33);
  EXPECT_EQ(view.texts[ParasText::LabComp], "33");
  EXPECT_EQ(model.GetSaveOptions(), (TrecSaveBitmap{6, 1, 150, 1, 33}));
}

TEST_F(GraphicsParasModelTest, AQualityThatIsNone_Should_BecomeNinety) {
  for (const int quality : {5, 101, 0, 9, -90, INT32_MIN, INT32_MAX}) {
    ParasView other;
    GraphicsParasModel opened(other);
    opened.SetSaveOptions({6, 24, 96, 0, quality});
    EXPECT_EQ(other.trackBar, 90) << quality;
    EXPECT_EQ(other.texts[ParasText::LabComp], "90");
    EXPECT_EQ(opened.GetSaveOptions().JpgQuality, 90);
  }
  for (const int quality : {10, 50, 100}) {
    model.SetSaveOptions({6, 24, 96, 0, quality});
    EXPECT_EQ(view.trackBar, quality);
    EXPECT_EQ(model.GetSaveOptions().JpgQuality, quality);
  }
}

TEST_F(GraphicsParasModelTest, TheCompressionMode_Should_StayAsItIs) {
  for (const int mode : {0, 1, 2, 7, -1}) {
    model.SetSaveOptions({6, 24, 96, mode, 90});
    EXPECT_EQ(model.GetSaveOptions().JpgCompress, mode);
  }
}

TEST_F(GraphicsParasModelTest, ADepthThatIsNone_Should_BecomeTrueColor) {
  Open({8, 32, 96, 0, 90});
  EXPECT_EQ(view.colors, 3);
  EXPECT_EQ(model.GetSaveOptions().BitsPerPix, 24);
}

TEST_F(GraphicsParasModelTest, TheResolution_Should_BeRounded_HalvesToEven) {
  Open({8, 24, 96, 0, 90});
  for (const auto& [dpi, kept] :
       {std::pair{150.4, 150}, {150.5, 150}, {151.5, 152}, {150.6, 151}}) {
    model.SpEdDpiChange(dpi);
    EXPECT_EQ(model.GetSaveOptions().BitsPerInch, kept) << dpi;
  }
}

TEST_F(GraphicsParasModelTest, ResolutionsThatAreNone_Should_BeZeroOrTheGreatest) {
  Open({8, 24, -300, 0, 90});
  EXPECT_EQ(view.dpi, 0);
  EXPECT_EQ(model.GetSaveOptions().BitsPerInch, 0);
  model.SpEdDpiChange(1e300);
  EXPECT_EQ(model.GetSaveOptions().BitsPerInch, INT32_MAX);
  model.SpEdDpiChange(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(model.GetSaveOptions().BitsPerInch, 0);
}

TEST_F(GraphicsParasModelTest, AHiddenType_Should_StayInTheRecord) {
  model.HideGroup(ParasGroup::type);
  Open({10, 24, 96, 0, 90});
  EXPECT_EQ(view.type, -1) << "the list is left alone";
  EXPECT_EQ(model.BmpType(), 10);
  model.SetBmpType(6);
  EXPECT_EQ(model.GetSaveOptions().BitmapFormat, 10);
}

TEST_F(GraphicsParasModelTest, AHiddenResolution_Should_StayInTheRecord) {
  model.HideGroup(ParasGroup::resolution);
  Open({10, 24, 72, 0, 90}, 100, 100);
  EXPECT_EQ(view.dpi, -1) << "the field is left alone";
  EXPECT_EQ(model.GetSaveOptions().BitsPerInch, 72);
}

TEST_F(GraphicsParasModelTest, TypesThatTheListHasNot_Should_StandWithPngAndComeBack) {
  for (const int type : {0, 2, 3, 4, 5, 77}) {
    ParasView other;
    GraphicsParasModel opened(other);
    opened.SetSaveOptions({type, 24, 96, 0, 90});
    EXPECT_EQ(other.type, 2) << type;
    EXPECT_EQ(opened.GetSaveOptions().BitmapFormat, type);
  }
}

// Groups and heights.

TEST_F(GraphicsParasModelTest, EachHiddenGroup_Should_ShortenTheWindowByItsHeight) {
  for (const ParasGroup group : kGroups) {
    ParasView other;
    GraphicsParasModel opened(other);
    const int before = other.windowHeight;
    opened.HideGroup(group);
    EXPECT_FALSE(other.visible[group]);
    EXPECT_FALSE(opened.Visible(group));
    EXPECT_EQ(other.windowHeight, before - other.heights[group]);
    opened.HideGroup(group);
    EXPECT_EQ(other.windowHeight, before - other.heights[group]) << "only once";
  }
}

TEST_F(GraphicsParasModelTest, ATypeOfNone_Should_LeaveBothSettings) {
  Open({0, 24, 96, 0, 90}, 10, 10);
  EXPECT_TRUE(view.visible[ParasGroup::bitmap]);
  EXPECT_TRUE(view.visible[ParasGroup::jpeg]);
  EXPECT_EQ(view.titles[ParasGroup::bitmap], "Settings");
  EXPECT_EQ(view.titles[ParasGroup::jpeg], "Settings");
  EXPECT_EQ(view.windowHeight, view.HeightOfContent());
}

TEST_F(GraphicsParasModelTest, Jpeg_Should_ShowItsSettings_FromNone) {
  const int before = view.windowHeight;
  model.SetBmpType(6);
  EXPECT_FALSE(view.visible[ParasGroup::bitmap]);
  EXPECT_TRUE(view.visible[ParasGroup::jpeg]);
  EXPECT_EQ(view.titles[ParasGroup::jpeg], "JPG Settings");
  EXPECT_EQ(view.windowHeight, before - view.heights[ParasGroup::bitmap]);
}

TEST_F(GraphicsParasModelTest, OtherTypes_Should_ShowTheSettingsOfBitmaps_FromNone) {
  const std::pair<int, const char*> titles[] = {
      {1, "BMP Settings"}, {8, "PNG Settings"}, {10, "TIF Settings"}, {2, "WMF Settings"},
      {4, "EMF Settings"}, {3, "JPG Settings"}, {5, " Settings"}};
  for (const auto& [type, title] : titles) {
    ParasView other;
    GraphicsParasModel opened(other);
    const int before = other.windowHeight;
    opened.SetBmpType(type);
    EXPECT_TRUE(other.visible[ParasGroup::bitmap]);
    EXPECT_FALSE(other.visible[ParasGroup::jpeg]);
    EXPECT_EQ(other.titles[ParasGroup::bitmap], title);
    EXPECT_EQ(other.windowHeight, before - other.heights[ParasGroup::jpeg]) << type;
  }
}

TEST_F(GraphicsParasModelTest, Jpeg_Should_ChangeTheHeightByTheDifference_FromAndToTheOthers) {
  for (const int type : {1, 8, 10}) {
    ParasView other;
    GraphicsParasModel opened(other);
    opened.SetBmpType(type);
    const int before = other.windowHeight;
    opened.SetBmpType(6);
    EXPECT_EQ(other.windowHeight,
              before + other.heights[ParasGroup::jpeg] - other.heights[ParasGroup::bitmap]);
    EXPECT_EQ(other.windowHeight, other.HeightOfContent());
    opened.SetBmpType(type);
    EXPECT_EQ(other.windowHeight, before);
    EXPECT_EQ(other.windowHeight, other.HeightOfContent());
  }
}

TEST_F(GraphicsParasModelTest, Jpeg_Should_LeaveTheHeight_FromAMetafile) {
  for (const int type : {2, 4}) {
    ParasView other;
    GraphicsParasModel opened(other);
    opened.SetBmpType(type);
    const int before = other.windowHeight;
    opened.SetBmpType(6);
    EXPECT_EQ(other.windowHeight, before);
  }
}

TEST_F(GraphicsParasModelTest, TypesOfBitmaps_Should_ChangeTheTitleAlone) {
  model.SetBmpType(1);
  const int before = view.windowHeight;
  model.SetBmpType(8);
  EXPECT_EQ(view.titles[ParasGroup::bitmap], "PNG Settings");
  model.SetBmpType(10);
  EXPECT_EQ(view.titles[ParasGroup::bitmap], "TIF Settings");
  EXPECT_EQ(view.windowHeight, before);
}

TEST_F(GraphicsParasModelTest, Titles_Should_HaveOnePrefix_When_TheUserGoesToAndFro) {
  for (int i = 0; i < 2; ++i) {
    model.CoBoGraphTypeChange(1);
    EXPECT_EQ(view.titles[ParasGroup::jpeg], "JPG Settings");
    model.CoBoGraphTypeChange(0);
    EXPECT_EQ(view.titles[ParasGroup::bitmap], "BMP Settings");
  }
}

TEST_F(GraphicsParasModelTest, TheSameType_Should_ChangeNothing) {
  model.SetBmpType(6);
  const int before = view.windowHeight;
  view.titles[ParasGroup::jpeg] = "untouched";
  model.SetBmpType(6);
  EXPECT_EQ(view.windowHeight, before);
  EXPECT_EQ(view.titles[ParasGroup::jpeg], "untouched");
}

TEST_F(GraphicsParasModelTest, TheList_Should_ApplyItsTypeAtOnce) {
  Open({1, 24, 96, 0, 90});
  model.CoBoGraphTypeChange(1);
  EXPECT_EQ(model.BmpType(), 6);
  EXPECT_TRUE(view.visible[ParasGroup::jpeg]);
  model.CoBoGraphTypeChange(2);
  EXPECT_EQ(model.BmpType(), 8);
  EXPECT_FALSE(view.visible[ParasGroup::jpeg]);
  EXPECT_EQ(view.windowHeight, view.HeightOfContent());
}

TEST_F(GraphicsParasModelTest, TheFirstShow_Should_MakeTheWindowHundredHighAtLeast) {
  view.windowHeight = 99;
  model.FormShow();
  EXPECT_EQ(view.windowHeight, 100);
  ParasView other;
  GraphicsParasModel opened(other);
  other.windowHeight = 101;
  opened.FormShow();
  EXPECT_EQ(other.windowHeight, 101);
}

// The size in millimeters.

TEST_F(GraphicsParasModelTest, Millimeters_Should_BeShownWidthFirst) {
  Open({8, 24, 300, 0, 90}, 209.6F, 297);
  EXPECT_EQ(view.texts[ParasText::PanWmm], "210");
  EXPECT_EQ(view.texts[ParasText::PanHmm], "297");
  EXPECT_TRUE(view.visible[ParasGroup::millimeters]);
  EXPECT_FALSE(view.hasEdits);
}

TEST_F(GraphicsParasModelTest, Millimeters_Should_BeHidden_When_OneIsSmallerThanAHundredth) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  const std::pair<float, float> sizes[] = {{0, 0},   {0.0099F, 10},   {10, 0.0099F},
                                           {-5, 10}, {kInfinity, 10}, {10, kNan}};
  for (const auto& [width, height] : sizes) {
    ParasView other;
    GraphicsParasModel opened(other);
    const int before = other.windowHeight;
    opened.SetSizeMM(width, height);
    EXPECT_FALSE(other.visible[ParasGroup::millimeters]) << width << " x " << height;
    EXPECT_EQ(other.windowHeight, before - other.heights[ParasGroup::millimeters]);
  }
  model.SetSizeMM(0.01F, 0.01F);
  EXPECT_TRUE(view.visible[ParasGroup::millimeters]);
}

TEST_F(GraphicsParasModelTest, Pixels_Should_FollowFromTheResolution) {
  Open({8, 24, 300, 0, 90}, 210, 297);
  EXPECT_EQ(view.texts[ParasText::PanBmpW], "2480");
  EXPECT_EQ(view.texts[ParasText::PanBmpH], "3508");
  EXPECT_EQ(view.texts[ParasText::LabBmpSize], "Size of Windows bitmap [MB]");
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "26.10");
  model.SpEdDpiChange(72);
  EXPECT_EQ(view.texts[ParasText::PanBmpW], "595");
  EXPECT_EQ(view.texts[ParasText::PanBmpH], "842");
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "1.50");
}

TEST_F(GraphicsParasModelTest, Pixels_Should_BeRounded_HalvesToEven) {
  Open({8, 24, 254, 0, 90}, 0.25F, 0.75F);
  EXPECT_EQ(view.texts[ParasText::PanBmpW], "2");
  EXPECT_EQ(view.texts[ParasText::PanBmpH], "8");
}

TEST_F(GraphicsParasModelTest, Pixels_Should_FollowFromAFactorInSinglePrecision) {
  // 7.5 inches: in double precision these were 562.5 pixels, which become 562.
  Open({8, 24, 75, 0, 90}, 190.5F, 63.5F);
  EXPECT_EQ(view.texts[ParasText::PanBmpW], "563");
  EXPECT_EQ(view.texts[ParasText::PanBmpH], "188");
}

TEST_F(GraphicsParasModelTest, Pixels_Should_StayAtNone_When_TheResolutionIsHidden) {
  model.HideGroup(ParasGroup::resolution);
  Open({8, 24, 300, 0, 90}, 210, 297);
  EXPECT_EQ(view.texts[ParasText::PanBmpW], "0");
  EXPECT_EQ(view.texts[ParasText::PanBmpH], "0");
  EXPECT_EQ(view.texts[ParasText::LabBmpSize], "Size of Windows bitmap [byte]");
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "0");
}

TEST_F(GraphicsParasModelTest, PixelsOfNonsense_Should_FitInto32Bits) {
  Open({8, 24, 300, 0, 90}, std::numeric_limits<float>::max(), -7);
  EXPECT_EQ(view.texts[ParasText::PanBmpW], "2147483647");
  EXPECT_EQ(view.texts[ParasText::PanBmpH], "0");
  model.SpEdDpiChange(0);
  EXPECT_EQ(view.texts[ParasText::PanBmpW], "0");
}

TEST_F(GraphicsParasModelTest, TheColors_Should_ChangeTheSizeInMemory) {
  Open({8, 24, 254, 0, 90}, 10, 10);
  EXPECT_EQ(view.texts[ParasText::LabBmpSize], "Size of Windows bitmap [kB]");
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "30");
  model.CoBoColorsChange(2);
  EXPECT_EQ(view.texts[ParasText::LabBmpSize], "Size of Windows bitmap [byte]");
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "10000");
  model.CoBoColorsChange(0);
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "1250");
}

TEST_F(GraphicsParasModelTest, NothingIsComputed_Until_TheWindowIsShown) {
  model.SetSizeMM(10, 10);
  model.SetSaveOptions({8, 24, 254, 0, 90});
  EXPECT_EQ(view.texts.count(ParasText::PanBmpW), 0u);
  EXPECT_EQ(view.texts[ParasText::LabBmpSize], "Size of Windows bitmap");
}

// The size in pixels.

TEST_F(GraphicsParasModelTest, ASizeInPixels_Should_StandInTheEdits) {
  OpenPixels({8, 24, 72, 0, 90}, 1000, 1000);
  EXPECT_TRUE(view.hasEdits);
  EXPECT_EQ(view.sizes[SizeEdit::FlEdWidth], 1000);
  EXPECT_EQ(view.sizes[SizeEdit::FlEdHeight], 1000);
  EXPECT_EQ(view.texts[ParasText::LabBmpSize], "Size of Windows bitmap [MB]");
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "3.00");
  EXPECT_EQ(model.RoundedWidth(), 1000);
  EXPECT_EQ(model.RoundedHeight(), 1000);
  EXPECT_EQ(model.GetSaveOptions().BitsPerInch, 72);
}

TEST_F(GraphicsParasModelTest, TheOtherEdit_Should_FollowInTheRememberedProportion) {
  OpenPixels({8, 24, 72, 0, 90}, 400, 300);
  model.FlEdSizeChange(SizeEdit::FlEdWidth, 200);
  EXPECT_EQ(view.sizes[SizeEdit::FlEdHeight], 150);
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "90");
  model.FlEdSizeChange(SizeEdit::FlEdHeight, 30);
  EXPECT_EQ(view.sizes[SizeEdit::FlEdWidth], 40);
  EXPECT_EQ(model.RoundedWidth(), 40);
  EXPECT_EQ(model.RoundedHeight(), 30);
}

TEST_F(GraphicsParasModelTest, RoundingOfEdits_Should_NotAddUp) {
  OpenPixels({8, 24, 72, 0, 90}, 1000, 3);
  model.FlEdSizeChange(SizeEdit::FlEdWidth, 1);
  EXPECT_EQ(model.RoundedHeight(), 0);
  model.FlEdSizeChange(SizeEdit::FlEdWidth, 500);
  EXPECT_EQ(model.RoundedHeight(), 2) << "halves become even";
  EXPECT_EQ(view.sizes[SizeEdit::FlEdHeight], 2) << "edits hold whole numbers";
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "3000") << "of what is shown";
  model.FlEdSizeChange(SizeEdit::FlEdWidth, 1000);
  EXPECT_EQ(model.RoundedHeight(), 3);
}

TEST_F(GraphicsParasModelTest, TheEdits_Should_BeSetOnce_When_TheyAnswerEachOther) {
  OpenPixels({8, 24, 72, 0, 90}, 400, 300);
  struct Answering : ParasView {
    GraphicsParasModel* model = nullptr;
    void SetSize(SizeEdit edit, double pixels) override {
      ParasView::SetSize(edit, pixels);
      if (model != nullptr) model->FlEdSizeChange(edit, pixels + 1);
    }
  } answering;
  GraphicsParasModel answered(answering);
  answering.model = &answered;
  answered.SetBmpSize(400, 300);
  answered.FormShow();
  answering.sizesSet = 0;
  answered.FlEdSizeChange(SizeEdit::FlEdWidth, 100);
  EXPECT_EQ(answering.sizesSet, 1);
  EXPECT_EQ(answered.RoundedWidth(), 100);
  EXPECT_EQ(answered.RoundedHeight(), 75);
}

TEST_F(GraphicsParasModelTest, TheEdits_Should_NotFollow_Until_TheWindowIsShown) {
  model.SetBmpSize(400, 300);
  model.FlEdSizeChange(SizeEdit::FlEdWidth, 200);
  EXPECT_EQ(view.sizes[SizeEdit::FlEdHeight], 300);
  model.FormShow();
  model.FlEdSizeChange(SizeEdit::FlEdWidth, 100);
  EXPECT_EQ(view.sizes[SizeEdit::FlEdHeight], 75);
}

TEST_F(GraphicsParasModelTest, ASizeBelowOne_Should_StopTheFollowing) {
  const std::pair<int, int> sizes[] = {{0, 300}, {400, 0}, {0, 0}, {-4, 3}, {4, INT32_MIN}};
  for (const auto& [width, height] : sizes) {
    ParasView other;
    GraphicsParasModel opened(other);
    opened.SetBmpSize(width, height);
    opened.FormShow();
    const std::string before = other.texts[ParasText::PanBmpSize];
    other.sizesSet = 0;
    opened.FlEdSizeChange(SizeEdit::FlEdWidth, 50);
    opened.FlEdSizeChange(SizeEdit::FlEdHeight, 60);
    EXPECT_EQ(other.sizesSet, 0) << width << " x " << height;
    EXPECT_EQ(other.texts[ParasText::PanBmpSize], before);
    EXPECT_EQ(opened.RoundedWidth(), 50);
    EXPECT_EQ(opened.RoundedHeight(), 60);
  }
}

TEST_F(GraphicsParasModelTest, NegativeSizes_Should_ComeBackAsNone) {
  OpenPixels({8, 24, 72, 0, 90}, -4, INT32_MIN);
  EXPECT_EQ(view.sizes[SizeEdit::FlEdWidth], 0);
  EXPECT_EQ(model.RoundedWidth(), 0);
  EXPECT_EQ(model.RoundedHeight(), 0);
}

TEST_F(GraphicsParasModelTest, HugeSizes_Should_FitInto32Bits) {
  OpenPixels({8, 24, 72, 0, 90}, 1, INT32_MAX);
  model.FlEdSizeChange(SizeEdit::FlEdWidth, 2e9);
  EXPECT_EQ(model.RoundedHeight(), INT32_MAX);
}

TEST_F(GraphicsParasModelTest, TheColors_Should_GoWithTheSizeInTheEdits) {
  OpenPixels({8, 24, 72, 0, 90}, 400, 300);
  model.FlEdSizeChange(SizeEdit::FlEdWidth, 40);
  model.CoBoColorsChange(2);
  EXPECT_EQ(view.texts[ParasText::PanBmpSize], "1200");
}

}  // namespace
}  // namespace rasterkit
