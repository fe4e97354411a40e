#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/dialogs/editchangesize/change_bitmap_size.h>
#include <rasterkit/dialogs/editpdfbitmap/bitmap_settings.h>
#include <rasterkit/graphics/jpeg_image.h>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"
#include "tests/support/memory_limit.h"

/// What the controls do to the picture.
namespace rasterkit::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class EditChanges : public EditModelTest {
 protected:
  static TBitmap Given(TPixelFormat format = pf24bit) { return GradientBitmap(format, 40, 30); }
  void SetSize(int32_t width, int32_t height, bool proportional) {
    view.onEditSize = [=](int32_t& w, int32_t& h, bool& keepAspect) {
      w = width;
      h = height;
      keepAspect = proportional;
      return true;
    };
  }
};

// The settings.

TEST_F(EditChanges, Settings_Should_BeAppliedAtOnce_When_TheTargetIsNew) {
  EditNew();
  model->SpeedButton256ColorsClick();
  TBitmap expected = Given();
  expected.SetPixelFormat(pf8bit);
  EXPECT_TRUE(SamePixels(expected, Work()));
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_TRUE(Down(SpeedButton256Colors));
  EXPECT_THAT(view.calls, ElementsAre("repaint"));

  model->SpeedButtonGrayScaleClick();
  BitmapToGray(&expected, false);
  EXPECT_TRUE(SamePixels(expected, Work())) << "on what it was made before";

  model->SpeedButtonBlackWhiteClick();
  ColorBmpToSW(&expected, 125);
  EXPECT_TRUE(SamePixels(expected, Work()));
}

TEST_F(EditChanges, Settings_Should_BeAppliedToTheOriginal_When_TheTargetExisted) {
  EditExisting();
  model->SpeedButtonGrayScaleClick();
  model->SpeedButtonGrayScaleClick();
  EXPECT_TRUE(SamePixels(Given(), Work())) << "the button is up again";
  EXPECT_FALSE(Down(SpeedButtonGrayScale));
  EXPECT_TRUE(model->BmpChanged());
}

TEST_F(EditChanges, Settings_Should_KeepTheCut) {
  EditExisting();
  Cut();
  model->SpeedButton256ColorsClick();
  EXPECT_TRUE(tool.GetCutRectExists());
  StartAnew();
  EditNew();
  Cut();
  model->SpeedButtonGrayScaleClick();
  EXPECT_TRUE(tool.GetCutRectExists());
}

TEST_F(EditChanges, Settings_Should_ChangeNothing_When_MemoryIsShort) {
  EditNew(pf24bit, 40, 30);
  {
    const MemoryLimit limit(100);
    model->SpeedButtonGrayScaleClick();
  }
  EXPECT_THAT(messages, SizeIs(1));
  EXPECT_FALSE(Down(SpeedButtonGrayScale));
  EXPECT_TRUE(SamePixels(Given(), Work()));
  EXPECT_FALSE(model->BmpChanged());
  EXPECT_EQ(tool.OrgBitmap(), &Work());
}

TEST_F(EditChanges, Settings_Should_ChangeNothing_When_MemoryIsShort_AndAllIsMadeAnew) {
  EditExisting();
  Cut();
  {
    const MemoryLimit limit(100);
    model->SpeedButtonGrayScaleClick();
  }
  EXPECT_THAT(messages, SizeIs(1));
  EXPECT_FALSE(Down(SpeedButtonGrayScale));
  EXPECT_TRUE(SamePixels(Given(), Work()));
  EXPECT_EQ(tool.OrgBitmap(), &Work());
  EXPECT_TRUE(tool.GetCutRectExists());
}

TEST_F(EditChanges, BlackWhite_Should_DisableWhatOneBitCannotTake) {
  EditNew();
  model->SpeedButtonBlackWhiteClick();
  for (const EditControl button :
       {SpeedButton256Colors, SpeedButtonGrayScale, SpeedButtonBlackWhite, SpeedButtonEdit})
    EXPECT_FALSE(Usable(button));
}

TEST_F(EditChanges, BlackWhite_Should_DisableThemToo_When_AllIsMadeAnew) {
  EditExisting();
  model->SpeedButtonBlackWhiteClick();
  for (const EditControl button :
       {SpeedButton256Colors, SpeedButtonGrayScale, SpeedButtonBlackWhite, SpeedButtonEdit})
    EXPECT_FALSE(Usable(button));
  ChooseAngle("90");
  EXPECT_EQ(Work().PixelFormat(), pf1bit);
  for (const EditControl button :
       {SpeedButton256Colors, SpeedButtonGrayScale, SpeedButtonBlackWhite, SpeedButtonEdit})
    EXPECT_TRUE(Usable(button)) << "the source has colors, and the settings come after";
}

TEST_F(EditChanges, OtherSettings_Should_DisableNothing) {
  EditExisting();
  model->SpeedButtonGrayScaleClick();
  EXPECT_EQ(Work().PixelFormat(), pf8bit);
  EXPECT_TRUE(Usable(SpeedButton256Colors)) << "the source has more";
  StartAnew();
  EditNew();
  model->SpeedButton256ColorsClick();
  EXPECT_TRUE(Usable(SpeedButton256Colors));
}

TEST_F(EditChanges, BlackWhite_Should_DisableNothing_When_ItIsAPage) {
  OpenPdf();
  model->SpeedButtonBlackWhiteClick();
  EXPECT_EQ(Work().PixelFormat(), pf1bit);
  for (const EditControl button :
       {SpeedButton256Colors, SpeedButtonGrayScale, SpeedButtonBlackWhite})
    EXPECT_TRUE(Usable(button));
}

TEST_F(EditChanges, BlackWhite_Should_AskForTheThreshold_When_CtrlIsHeld) {
  EditNew();
  model->FormKeyDown(EditKey::other, true);
  view.onChangeBitmap = [](TBitmap& bitmap, TChgBmpValuesRec&) {
    ColorBmpToSW(&bitmap, 40);
    return true;
  };
  model->SpeedButtonBlackWhiteClick();
  EXPECT_THAT(view.operations, ElementsAre(5));
  TBitmap expected = Given();
  ColorBmpToSW(&expected, 40);
  EXPECT_TRUE(SamePixels(expected, Work()));
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_TRUE(Down(SpeedButtonBlackWhite));
}

TEST_F(EditChanges, BlackWhite_Should_ChangeNothing_When_TheThresholdIsNotConfirmed) {
  EditNew();
  model->FormKeyDown(EditKey::other, true);
  view.Of(SpeedButtonBlackWhite).down = true;
  model->SpeedButtonBlackWhiteClick();
  EXPECT_THAT(view.operations, ElementsAre(5));
  EXPECT_FALSE(model->BmpChanged());
  EXPECT_FALSE(Down(SpeedButtonBlackWhite)) << "the window's button comes up again";
  EXPECT_FALSE(model->CanUndo());
}

TEST_F(EditChanges, BlackWhite_Should_NotAsk_When_CtrlWasReleased_OrAllIsMadeAnew) {
  EditNew();
  model->FormKeyDown(EditKey::other, true);
  EXPECT_TRUE(model->CtrlPressed());
  model->FormKeyUp();
  EXPECT_FALSE(model->CtrlPressed());
  model->SpeedButtonBlackWhiteClick();
  StartAnew();
  EditExisting();
  model->FormKeyDown(EditKey::other, true);
  model->SpeedButtonBlackWhiteClick();
  EXPECT_THAT(view.operations, IsEmpty());
  EXPECT_EQ(Work().PixelFormat(), pf1bit);
}

TEST_F(EditChanges, Mirror_Should_MirrorWhatIsSeen_WithTheCut) {
  for (const bool isNew : {true, false}) {
    StartAnew();
    if (isNew)
      EditNew();
    else
      EditExisting();
    Cut(5, 4, 25, 14);
    model->SpeedButtonMirrorClick();
    TBitmap expected = Given();
    SwapBitmap(true, &expected);
    EXPECT_TRUE(SamePixels(expected, Work()));
    EXPECT_TRUE(AlmostEqual(tool.BmpCutRect(), RDRect(15, 4, 35, 14), 1e-9));
    EXPECT_TRUE(model->BmpChanged());
    EXPECT_TRUE(Down(SpeedButtonMirror));
    model->SpeedButtonMirrorClick();
    EXPECT_TRUE(SamePixels(Given(), Work()));
    EXPECT_FALSE(Down(SpeedButtonMirror));
  }
}

TEST_F(EditChanges, Mirror_Should_LiftTheOthers) {
  OpenPdf();
  model->SpeedButtonGrayScaleClick();
  TBitmap expected = std::move(*Work().Clone());
  SwapBitmap(true, &expected);
  model->SpeedButtonMirrorClick();
  EXPECT_TRUE(Down(SpeedButtonMirror));
  EXPECT_FALSE(Down(SpeedButtonGrayScale));
  EXPECT_TRUE(SamePixels(expected, Work())) << "what is seen stays gray";
}

TEST_F(EditChanges, Mirror_Should_NotRenderAnew) {
  OpenPdf();
  model->SpeedButtonMirrorClick();
  EXPECT_THAT(pdf.exports, IsEmpty());
}

// Cut, values, size.

TEST_F(EditChanges, Cut_Should_LeaveTheCut) {
  EditNew();
  Cut();
  const auto expected = tool.GetCutBitmap();
  model->SpeedButtonCutClick();
  EXPECT_TRUE(SamePixels(*expected, Work()));
  EXPECT_EQ(tool.OrgBitmap(), &Work());
  EXPECT_FALSE(tool.GetCutRectExists());
  EXPECT_EQ(tool.StretchFactor(), 20) << "20 x 10 fitted into 400 x 300";
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_TRUE(model->OrgGraphic()->Modified());
  EXPECT_TRUE(SamePixels(*expected, static_cast<const TBitmap&>(*model->OrgGraphic())));
  EXPECT_THAT(view.calls, Contains("repaint"));
}

TEST_F(EditChanges, Cut_Should_FitTheView_When_NothingIsCutOff) {
  EditNew();
  model->SpeedButtonViewOrigClick();
  Cut(0, 0, 40, 30);
  model->SpeedButtonCutClick();
  EXPECT_EQ(tool.StretchFactor(), 10);
}

TEST_F(EditChanges, Cut_Should_DoNothing_When_ThereIsNone) {
  EditNew();
  const TGraphic* before = model->OrgGraphic();
  model->SpeedButtonCutClick();
  EXPECT_EQ(model->OrgGraphic(), before);
  EXPECT_FALSE(model->BmpChanged());
}

TEST_F(EditChanges, Edit_Should_ChangeTheValues_AndFitTheView) {
  EditNew();
  Cut();
  model->SpeedButtonViewOrigClick();
  view.onChangeBitmap = [](TBitmap& bitmap, TChgBmpValuesRec& values) {
    EXPECT_EQ(values.Brightness, 0);
    BitmapToGray(&bitmap, true);
    return true;
  };
  model->SpeedButtonEditClick();
  EXPECT_THAT(view.operations, ElementsAre(0));
  TBitmap expected = Given();
  BitmapToGray(&expected, true);
  EXPECT_TRUE(SamePixels(expected, Work()));
  EXPECT_FALSE(tool.GetCutRectExists());
  EXPECT_EQ(tool.StretchFactor(), 10);
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_TRUE(SamePixels(expected, static_cast<const TBitmap&>(*model->OrgGraphic())));
  EXPECT_TRUE(model->OrgGraphic()->Modified());
  EXPECT_THAT(view.calls, Contains("repaint"));
}

TEST_F(EditChanges, Edit_Should_ChangeNothing_When_ItIsNotConfirmed) {
  EditNew();
  Cut();
  const TGraphic* before = model->OrgGraphic();
  model->SpeedButtonEditClick();
  EXPECT_THAT(view.operations, ElementsAre(0));
  EXPECT_TRUE(tool.GetCutRectExists());
  EXPECT_FALSE(model->BmpChanged());
  EXPECT_EQ(model->OrgGraphic(), before);
}

TEST_F(EditChanges, Edit_Should_IgnoreWhatHappensMeanwhile) {
  EditNew();
  view.onChangeBitmap = [this](TBitmap&, TChgBmpValuesRec&) {
    model->SpeedButtonMirrorClick();
    model->NaviResultCancelClick();
    model->FormClose();
    EXPECT_TRUE(model->FormKeyDown(EditKey::escape, false));
    return false;
  };
  model->SpeedButtonEditClick();
  EXPECT_FALSE(Down(SpeedButtonMirror));
  EXPECT_THAT(view.closed, IsEmpty());
}

TEST_F(EditChanges, Edit_Should_KeepTheClassOfTheGraphic) {
  auto jpeg = std::make_unique<TJPEGImage>();
  const TBitmap picture = Given();
  jpeg->Assign(&picture);
  model->SetOrgGraphic(std::move(jpeg));
  view.onChangeBitmap = [](TBitmap&, TChgBmpValuesRec&) { return true; };
  model->SpeedButtonEditClick();
  EXPECT_NE(dynamic_cast<const TJPEGImage*>(model->OrgGraphic()), nullptr);
  EXPECT_TRUE(model->OrgGraphic()->Modified());
}

TEST_F(EditChanges, CtrlH_Should_AskForTheSize_StartingWithThatOfThePicture) {
  EditNew();
  view.onEditSize = [](int32_t& width, int32_t& height, bool& keepAspect) {
    EXPECT_EQ(width, 40);
    EXPECT_EQ(height, 30);
    EXPECT_TRUE(keepAspect);
    return false;
  };
  EXPECT_TRUE(model->FormKeyDown(EditKey::h, true));
  EXPECT_FALSE(model->BmpChanged());
  EXPECT_FALSE(model->FormKeyDown(EditKey::h, false)) << "H alone is nothing";
}

TEST_F(EditChanges, CtrlH_Should_Stretch_When_TheSizeIsProportional) {
  EditNew();
  SetSize(57, 41, true);
  model->FormKeyDown(EditKey::h, true);
  const TBitmap given = Given();
  EXPECT_TRUE(SamePixels(*ChangeBitmapSize(&given, 57, 41, true), Work()));
  EXPECT_EQ(tool.OrgBitmap(), &Work());
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_EQ(model->OrgGraphic()->Width(), 57);
  EXPECT_TRUE(model->OrgGraphic()->Modified());
  EXPECT_THAT(view.calls, Contains("repaint"));
}

TEST_F(EditChanges, CtrlH_Should_CopyPlainly_When_TheSizeIsNotProportional) {
  EditNew();
  SetSize(57, 21, false);
  model->FormKeyDown(EditKey::h, true);
  const TBitmap given = Given();
  EXPECT_TRUE(SamePixels(*ChangeBitmapSize(&given, 57, 21, false), Work()));
}

TEST_F(EditChanges, CtrlH_Should_ChangeAPageToo) {
  OpenPdf();
  SetSize(30, 15, true);
  model->FormKeyDown(EditKey::h, true);
  EXPECT_EQ(Work().Width(), 30);
}

TEST_F(EditChanges, CtrlH_Should_ChangeNothing_When_TheSizeIsTooLarge) {
  EditNew();
  SetSize(60000, 60000, true);
  {
    const MemoryLimit limit(100000);
    model->FormKeyDown(EditKey::h, true);
  }
  EXPECT_THAT(messages, SizeIs(1));
  EXPECT_EQ(Work().Width(), 40);
  EXPECT_FALSE(model->BmpChanged());
  EXPECT_EQ(tool.OrgBitmap(), &Work());
}

TEST_F(EditChanges, Edit_Should_BringThePictureBack_When_NoGraphicCanBeMadeOfIt) {
  auto jpeg = std::make_unique<TJPEGImage>();
  const TBitmap picture = Given();
  jpeg->Assign(&picture);
  model->SetOrgGraphic(std::move(jpeg));
  const TBitmap before = std::move(*Work().Clone());
  const TGraphic* graphic = model->OrgGraphic();
  Cut();
  std::optional<MemoryLimit> limit;
  view.onChangeBitmap = [&](TBitmap& bitmap, TChgBmpValuesRec&) {
    bitmap.SetPixelFormat(pf8bit);
    limit.emplace(2000);  // Enough for one byte per pixel.
    return true;
  };
  model->SpeedButtonEditClick();
  EXPECT_THAT(messages, SizeIs(1));
  EXPECT_TRUE(SamePixels(before, Work()));
  EXPECT_EQ(tool.OrgBitmap(), &Work());
  EXPECT_EQ(model->OrgGraphic(), graphic);
  EXPECT_TRUE(tool.GetCutRectExists());
  EXPECT_FALSE(model->BmpChanged());
}

// The view.

TEST_F(EditChanges, View_Should_BeOriginalOrFitted) {
  EditNew();
  model->SpeedButtonViewOrigClick();
  EXPECT_EQ(tool.StretchFactor(), 1);
  EXPECT_THAT(view.calls, ElementsAre("repaint"));
  model->SpeedButtonViewZoomClick();
  EXPECT_EQ(tool.StretchFactor(), 10);
  EXPECT_THAT(view.calls, SizeIs(2));
  model->SpeedButtonViewOrigClick();
  model->FormActivate();
  EXPECT_EQ(tool.StretchFactor(), 10);
  EXPECT_FALSE(model->BmpChanged());
}

TEST_F(EditChanges, FormResize_Should_FitAgain) {
  EditNew();
  box.client = {0, 0, 80, 300};
  model->FormResize();
  EXPECT_EQ(tool.StretchFactor(), 2);
}

TEST_F(EditChanges, FormMouseWheel_Should_Zoom_AndCountAsHandled) {
  EditNew();
  EXPECT_TRUE(model->FormMouseWheel(120, {200, 150}));
  EXPECT_GT(tool.StretchFactor(), 10);
}

// Events that a control emits while it is set.

TEST_F(EditChanges, Events_Should_BeIgnored_When_TheModelSetsAControl) {
  OpenPdf(3);
  view.onText = [this](EditControl control, const std::string& text) {
    if (control == CoBoRotation) model->CoBoRotationChange(text + "7");
  };
  ChooseAngle("90");
  ChoosePage(2);
  EXPECT_EQ(model->Rotation(), 0);
  EXPECT_THAT(pdf.exports, SizeIs(2));
}

}  // namespace
}  // namespace rasterkit::test
