#include <algorithm>

#include "tests/dialogs/editpdfbitmap/model_fixture.h"

/// Every event without a picture, or with an empty one.
namespace rasterkit::test {
namespace {

class EditWithoutPicture : public EditModelTest {
 protected:
  void RaiseEveryEvent() {
    EditPdfBmpModel& it = *model;
    it.FormActivate();
    it.FormResize();
    it.FormMouseWheel(120, {3, 4});
    it.FormMouseWheel(-120, {3, 4});
    it.CoBoResolutionKeyPress(ComboKey::digit);
    it.CoBoResolutionChange("99");
    it.CoBoResolutionKeyPress(ComboKey::enter);
    it.CoBoResolutionChange("72");
    it.CoBoRotationKeyPress(ComboKey::digit);
    it.CoBoRotationChange("45");
    it.CoBoRotationKeyPress(ComboKey::enter);
    it.CoBoRotationChange("90");
    it.CoBoExit();
    it.SpinEditPageChange(2);
    for (int i = 0; i < 2; ++i) {
      it.SpeedButtonMirrorClick();
      it.SpeedButtonGrayScaleClick();
      it.SpeedButtonBlackWhiteClick();
      it.SpeedButton256ColorsClick();
      it.FormKeyDown(EditKey::other, true);
    }
    it.SpeedButtonViewZoomClick();
    it.SpeedButtonViewOrigClick();
    Cut();
    it.SpeedButtonCutClick();
    it.SpeedButtonEditClick();
    it.SpeedButtonSaveClick();
    it.SpeedButtonOpenClick();
    it.FormDropFile("missing.png");
    it.FormDropFile("");
    it.Undo();
    it.Undo();
    for (const EditKey key :
         {EditKey::enter, EditKey::del, EditKey::h, EditKey::z, EditKey::other, EditKey::escape})
      it.FormKeyDown(key, true);
    it.FormKeyUp();
    it.NaviResultHelpClick();
    it.NaviResultPostClick();
    it.NaviResultCancelClick();
    it.FormClose();
  }

  /// What holds if there was no picture at any time.
  void ExpectNoPicture() {
    EXPECT_EQ(model->WorkBitmap(), nullptr);
    EXPECT_FALSE(tool.CutRectExists());
    EXPECT_FALSE(model->CanUndo());
    EXPECT_TRUE(view.operations.empty()) << "no dialog changes what is not there";
  }
  /// What holds if a blank picture was shown: it is blank, in the size that was left.
  void ExpectBlankPicture(int width, int height) {
    ASSERT_NE(model->WorkBitmap(), nullptr);
    const TBitmap& picture = *model->WorkBitmap();
    EXPECT_EQ(picture.Width(), width);
    EXPECT_EQ(picture.Height(), height);
    for (int y = 0; y < picture.Height(); ++y)
      for (int x = 0; x < picture.Width(); ++x) EXPECT_EQ(picture.PixelColor(x, y), clWhite);
  }
  /// What was said at the end: a file that does not exist was opened twice.
  void ExpectMessagesOfMissingFiles() {
    ASSERT_GE(messages.size(), 2u);
    EXPECT_EQ(messages.end()[-2], "The file missing.png cannot be read as a picture.");
    EXPECT_EQ(messages.back(), "The file  cannot be read as a picture.");
  }
  /// Nothing is left half done, and the next picture is edited as usual.
  void ExpectUsable() {
    ExpectMessagesOfMissingFiles();
    const auto calls = [&](const char* call) {
      return std::count(view.calls.begin(), view.calls.end(), call);
    };
    EXPECT_FALSE(model->IsRendering());
    EXPECT_FALSE(model->InEditCoBo());
    EXPECT_FALSE(model->CtrlPressed());
    EXPECT_EQ(calls("hourglass"), calls("cursor"));
    EXPECT_EQ(calls("rendering"), calls("rendered"));
    EXPECT_EQ(model->ModalResult(), mrCancel);
    const TBitmap next = GradientBitmap(pf24bit, 40, 30);
    model->SetOrgGraphic(next.Clone());
    ASSERT_NE(model->WorkBitmap(), nullptr);
    EXPECT_TRUE(SamePixels(next, *model->WorkBitmap()));
    model->SpeedButtonMirrorClick();
    EXPECT_FALSE(SamePixels(next, *model->WorkBitmap()));
  }
};

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_NothingIsOpen) {
  RaiseEveryEvent();
  EXPECT_NE(model->GetOrgGraphic(), nullptr);
  ExpectBlankPicture(10, 10);
  ExpectUsable();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_AllIsConfirmed) {
  view.onChangeBitmap = [](TBitmap&, TChgBmpValuesRec&) { return true; };
  view.onEditSize = [](int32_t&, int32_t&, bool&) { return true; };
  RaiseEveryEvent();
  ExpectBlankPicture(5, 6);
  ExpectUsable();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_TheGraphicIsNone) {
  model->SetOrgGraphic(nullptr);
  view.onEditSize = [](int32_t& width, int32_t&, bool&) {
    width = 0;
    return true;
  };
  RaiseEveryEvent();
  ExpectBlankPicture(10, 10);
  ExpectUsable();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_TheGraphicIsEmpty) {
  model->SetOrgGraphic(std::make_unique<TBitmap>());
  RaiseEveryEvent();
  ExpectBlankPicture(0, 0);
  ExpectUsable();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_NoPageCanBeRendered) {
  pdf.pages.assign(3, {72, 36});
  pdf.onExport = [](const PdfDocument::PdfKeepGoing&) -> bool { throw std::bad_alloc(); };
  model->SetOrgFilename("a.pdf");
  ASSERT_EQ(model->WorkBitmap(), nullptr);
  RaiseEveryEvent();
  ExpectNoPicture();
  ExpectUsable();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_EveryExportFails) {
  pdf.pages.assign(3, {72, 36});
  pdf.onExport = [](const PdfDocument::PdfKeepGoing&) { return false; };
  model->SetOrgFilename("a.pdf");
  RaiseEveryEvent();
  ExpectBlankPicture(0, 0);
  ExpectUsable();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_EveryPageIsDamaged) {
  pdf.pages.assign(3, {72, 36});
  pdf.onExport = [](const PdfDocument::PdfKeepGoing&) -> bool { throw FormatError("damaged"); };
  model->SetOrgFilename("a.pdf");
  RaiseEveryEvent();
  ExpectNoPicture();
  ExpectUsable();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_ADocumentHasNoPages) {
  pdf.pages.clear();
  model->SetOrgFilename("a.pdf");
  EXPECT_FALSE(messages.empty());
  RaiseEveryEvent();
  ExpectNoPicture();
  ExpectUsable();
}

}  // namespace
}  // namespace rasterkit::test
