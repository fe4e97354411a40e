#include <new>

#include <rasterkit/dialogs/editpdfbitmap/bitmap_settings.h>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"
#include "tests/support/memory_limit.h"

/// Settings that are applied to a picture made again.
namespace rasterkit::test {
namespace {

using testing::ElementsAre;

class EditSettings : public EditModelTest {};

// After the picture is made.

TEST_F(EditSettings, GenerateBitmaps_Should_ShowTheHourglass) {
  OpenPdf();
  ChooseResolution("72");
  EXPECT_THAT(view.calls, ElementsAre("hourglass", "rendering", "rendered", "repaint", "cursor"));
}

TEST_F(EditSettings, GenerateBitmaps_Should_TakeTheHourglassAway_When_ItFails) {
  OpenPdf();
  pdf.onExport = [](const PdfDocument::PdfKeepGoing&) -> bool { throw std::bad_alloc(); };
  ChooseResolution("72");
  EXPECT_EQ(view.calls.back(), "cursor");
}

TEST_F(EditSettings, GenerateBitmaps_Should_KeepTheCut_ScaledWithTheResolution) {
  OpenPdf();
  Cut(10, 20, 40, 50);
  ChooseResolution("300");
  ASSERT_TRUE(tool.GetCutRectExists());
  EXPECT_TRUE(AlmostEqual(tool.BmpCutRect(), RDRect(20, 40, 80, 100), 1e-9));
}

TEST_F(EditSettings, GenerateBitmaps_Should_KeepTheZoom_When_TheSizeStays) {
  OpenPdf();
  model->SpeedButtonViewOrigClick();
  const RDRect place = tool.PaintRect();
  model->SpeedButtonGrayScaleClick();
  EXPECT_TRUE(AlmostEqual(tool.PaintRect(), place, 1e-9));
}

TEST_F(EditSettings, GenerateBitmaps_Should_StartFromTheGraphic_When_TheTargetExisted) {
  EditExisting();
  ChooseAngle("90");
  ChooseAngle("180");
  auto expected = GradientBitmap(pf24bit, 40, 30).Clone();
  RotatePicture(180, expected);
  EXPECT_TRUE(SamePixels(*expected, Work())) << "turns start anew";
  EXPECT_TRUE(model->BmpChanged());
}

TEST_F(EditSettings, ExecBmpSettings_Should_BeAppliedEachTime) {
  OpenPdf();
  model->SpeedButtonMirrorClick();
  ChooseAngle("90");
  ChooseResolution("72");
  auto expected = PdfPicture(0, 0.72).Clone();
  ApplySettings({.mirror = true}, *expected);
  RotatePicture(90, expected);
  EXPECT_TRUE(SamePixels(*expected, Work()));
  EXPECT_EQ(tool.OrgBitmap(), &Work());
}

TEST_F(EditSettings, ExecBmpSettings_Should_FollowTheButtons) {
  EditExisting();
  const struct {
    EditControl button;
    BitmapSettings settings;
  } cases[] = {{SpeedButton256Colors, {.colors256 = true}},
               {SpeedButtonGrayScale, {.gray = true}},
               {SpeedButtonBlackWhite, {.blackWhite = true}}};
  for (const auto& [button, settings] : cases) {
    if (button == SpeedButton256Colors) model->SpeedButton256ColorsClick();
    if (button == SpeedButtonGrayScale) model->SpeedButtonGrayScaleClick();
    if (button == SpeedButtonBlackWhite) model->SpeedButtonBlackWhiteClick();
    TBitmap expected = GradientBitmap(pf24bit, 40, 30);
    ApplySettings(settings, expected);
    EXPECT_TRUE(SamePixels(expected, Work()));
    EXPECT_TRUE(Down(button));
  }
}

TEST_F(EditSettings, BmpRotate_Should_GoBackToZero_When_ItIsRefused) {
  OpenPdf();
  {
    const MemoryLimit limit(40000);
    ChooseAngle("45");
  }
  EXPECT_THAT(messages, ElementsAre("Bitmap to large to rotate."));
  EXPECT_EQ(model->Rotation(), 0);
  EXPECT_EQ(Text(CoBoRotation), "0");
  EXPECT_TRUE(SamePixels(PdfPicture(0, 1.5), Work()));
}

}  // namespace
}  // namespace rasterkit::test
