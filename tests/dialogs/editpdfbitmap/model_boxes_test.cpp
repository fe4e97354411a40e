#include <rasterkit/dialogs/editpdfbitmap/bitmap_settings.h>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"
#include "tests/support/memory_limit.h"

/// The boxes of resolution, rotation and page.
namespace rasterkit::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class EditBoxes : public EditModelTest {
 protected:
  static TBitmap Given() { return GradientBitmap(pf24bit, 40, 30); }
};

// The resolution's box.

TEST_F(EditBoxes, CoBoResolutionChange_Should_Render_When_TheNumberIsAnother) {
  OpenPdf();
  ChooseResolution("150");
  ChooseResolution("150 dpi");
  EXPECT_THAT(pdf.exports, IsEmpty());
  ChooseResolution("1a5");
  EXPECT_EQ(model->Resolution(), 15);
}

TEST_F(EditBoxes, CoBoResolutionChange_Should_BeIgnored_When_TheUserTypes) {
  OpenPdf();
  EXPECT_TRUE(model->CoBoResolutionKeyPress(ComboKey::digit));
  EXPECT_TRUE(model->InEditCoBo());
  ChooseResolution("3");
  EXPECT_FALSE(model->InEditCoBo()) << "a change ends it";
  EXPECT_THAT(pdf.exports, IsEmpty());
  EXPECT_TRUE(model->CoBoResolutionKeyPress(ComboKey::backspace));
  EXPECT_TRUE(model->InEditCoBo());
  ChooseResolution("30");
  EXPECT_THAT(pdf.exports, IsEmpty());
  EXPECT_EQ(model->Resolution(), 150);
}

TEST_F(EditBoxes, CoBoResolutionKeyPress_Should_Apply_When_ItIsEnter) {
  OpenPdf();
  Type("300");
  EXPECT_FALSE(model->CoBoResolutionKeyPress(ComboKey::enter));
  EXPECT_EQ(model->Resolution(), 300);
  EXPECT_THAT(pdf.exports, SizeIs(1));
  model->CoBoResolutionKeyPress(ComboKey::enter);
  EXPECT_THAT(pdf.exports, SizeIs(1)) << "it is that already";
}

TEST_F(EditBoxes, CoBoResolutionKeyPress_Should_Swallow_AllOtherKeys) {
  OpenPdf();
  EXPECT_FALSE(model->CoBoResolutionKeyPress(ComboKey::minus));
  EXPECT_FALSE(model->CoBoResolutionKeyPress(ComboKey::other));
  EXPECT_FALSE(model->InEditCoBo());
}

TEST_F(EditBoxes, CoBoResolution_Should_BeWithoutEffect_When_TheSourceIsAGraphic) {
  EditNew();
  ChooseAngle("90");
  ChooseAngle("180");
  const TBitmap before = std::move(*Work().Clone());
  ChooseResolution("72");
  EXPECT_TRUE(SamePixels(before, Work()));
}

// The rotation's box.

TEST_F(EditBoxes, CoBoRotationChange_Should_TurnTheWorkBitmapOn_When_TheTargetIsNew) {
  EditNew();
  ChooseAngle("90");
  ChooseAngle("180");
  auto expected = Given().Clone();
  RotatePicture(90, expected);
  RotatePicture(180, expected);
  EXPECT_TRUE(SamePixels(*expected, Work())) << "turns add up";
  EXPECT_EQ(model->Rotation(), 180);
  EXPECT_TRUE(model->BmpChanged());
  EXPECT_EQ(tool.OrgBitmap(), &Work());
  EXPECT_THAT(view.calls, Contains("repaint"));
}

TEST_F(EditBoxes, CoBoRotationChange_Should_TurnNothing_When_TheAngleIsZeroAgain) {
  EditNew();
  ChooseAngle("90");
  const TBitmap before = std::move(*Work().Clone());
  ChooseAngle("0");
  EXPECT_EQ(model->Rotation(), 0);
  EXPECT_TRUE(SamePixels(before, Work()));
}

TEST_F(EditBoxes, CoBoRotationChange_Should_KeepTheCut_When_TheTargetIsNew) {
  EditNew();
  Cut();
  ChooseAngle("180");
  EXPECT_TRUE(tool.GetCutRectExists());
}

TEST_F(EditBoxes, CoBoRotationChange_Should_RemoveTheCut_When_ThePictureIsMadeAnew) {
  EditExisting();
  Cut();
  ChooseAngle("90");
  EXPECT_FALSE(tool.GetCutRectExists());
  OpenPdf();
  Cut();
  ChooseAngle("180");
  EXPECT_FALSE(tool.GetCutRectExists());
  EXPECT_THAT(pdf.exports, SizeIs(1));
  EXPECT_EQ(pdf.exports[0].rotation, PdfRotation::none);
}

TEST_F(EditBoxes, CoBoRotationChange_Should_DoNothing_When_TheAngleIsTheSame) {
  EditNew();
  ChooseAngle("0");
  ChooseAngle("360");
  ChooseAngle("-");
  ChooseAngle("");
  EXPECT_FALSE(model->BmpChanged());
  ChooseAngle("90");
  const TBitmap* turned = &Work();
  ChooseAngle("450");
  EXPECT_EQ(&Work(), turned);
}

TEST_F(EditBoxes, CoBoRotation_Should_WaitForEnter_When_TheUserTypes) {
  EditNew();
  TypeAngle("4");
  TypeAngle("45");
  TypeAngle("450");
  EXPECT_EQ(model->Rotation(), 0);
  EXPECT_TRUE(model->InEditCoBo()) << "a change does not end it";
  EXPECT_FALSE(model->CoBoRotationKeyPress(ComboKey::enter));
  EXPECT_FALSE(model->InEditCoBo());
  EXPECT_EQ(model->Rotation(), 90);
  auto expected = Given().Clone();
  RotatePicture(90, expected);
  EXPECT_TRUE(SamePixels(*expected, Work()));
}

TEST_F(EditBoxes, CoBoRotation_Should_FoldNegativeAngles) {
  EditNew();
  TypeAngle("-400");
  model->CoBoRotationKeyPress(ComboKey::enter);
  EXPECT_EQ(model->Rotation(), -40);
}

TEST_F(EditBoxes, CoBoRotationKeyPress_Should_TakeSignsAndDigits) {
  EditNew();
  for (const ComboKey key : {ComboKey::minus, ComboKey::digit, ComboKey::backspace}) {
    model->CoBoExit();
    EXPECT_TRUE(model->CoBoRotationKeyPress(key));
    EXPECT_TRUE(model->InEditCoBo());
  }
  model->CoBoExit();
  EXPECT_FALSE(model->InEditCoBo());
  EXPECT_FALSE(model->CoBoRotationKeyPress(ComboKey::other));
  EXPECT_FALSE(model->InEditCoBo());
  EXPECT_EQ(model->Rotation(), 0);
}

TEST_F(EditBoxes, CoBoRotation_Should_ShowZero_When_TheTurnIsRefused) {
  EditNew();
  const TBitmap* before = &Work();
  {
    const MemoryLimit limit(4000);
    ChooseAngle("45");
  }
  EXPECT_EQ(&Work(), before);
  EXPECT_EQ(model->Rotation(), 0);
  EXPECT_EQ(Text(CoBoRotation), "0");
  EXPECT_THAT(messages, ElementsAre("Bitmap to large to rotate."));
}

// The page.

TEST_F(EditBoxes, SpinEditPageChange_Should_SetTheSettingsBack_ButNot256Colors) {
  OpenPdf(3);
  for (const EditControl button :
       {SpeedButtonMirror, SpeedButtonGrayScale, SpeedButtonBlackWhite}) {
    if (button == SpeedButtonMirror) model->SpeedButtonMirrorClick();
    if (button == SpeedButtonGrayScale) model->SpeedButtonGrayScaleClick();
    if (button == SpeedButtonBlackWhite) model->SpeedButtonBlackWhiteClick();
    ChooseAngle("90");
    ChoosePage(model->PageNumber() % 3 + 1);
    EXPECT_FALSE(Down(button));
    EXPECT_EQ(model->Rotation(), 0);
    EXPECT_EQ(Text(CoBoRotation), "0");
    EXPECT_TRUE(SamePixels(PdfPicture(model->PageNumber() - 1, 1.5), Work()));
  }
  model->SpeedButton256ColorsClick();
  ChoosePage(2);
  EXPECT_TRUE(Down(SpeedButton256Colors));
  EXPECT_EQ(Work().PixelFormat(), pf8bit);
}

TEST_F(EditBoxes, SpinEditPageChange_Should_RemoveTheCut) {
  OpenPdf(3);
  Cut();
  ChoosePage(2);
  EXPECT_FALSE(tool.GetCutRectExists());
}

TEST_F(EditBoxes, SpinEditPageChange_Should_DoNothing_When_ThePageIsTheSame) {
  OpenPdf(3);
  ChoosePage(1);
  EXPECT_THAT(pdf.exports, IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
