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
};

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_NothingIsOpen) {
  RaiseEveryEvent();
  model->GetOrgGraphic();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_AllIsConfirmed) {
  view.onChangeBitmap = [](TBitmap&, TChgBmpValuesRec&) { return true; };
  view.onEditSize = [](int32_t&, int32_t&, bool&) { return true; };
  RaiseEveryEvent();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_TheGraphicIsNone) {
  model->SetOrgGraphic(nullptr);
  view.onEditSize = [](int32_t& width, int32_t&, bool&) {
    width = 0;
    return true;
  };
  RaiseEveryEvent();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_TheGraphicIsEmpty) {
  model->SetOrgGraphic(std::make_unique<TBitmap>());
  RaiseEveryEvent();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_NoPageCanBeRendered) {
  pdf.pages.assign(3, {72, 36});
  pdf.onExport = [](const PdfDocument::PdfKeepGoing&) -> bool { throw std::bad_alloc(); };
  model->SetOrgFilename("a.pdf");
  ASSERT_EQ(model->WorkBitmap(), nullptr);
  RaiseEveryEvent();
  EXPECT_EQ(model->WorkBitmap(), nullptr);
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_EveryExportFails) {
  pdf.pages.assign(3, {72, 36});
  pdf.onExport = [](const PdfDocument::PdfKeepGoing&) { return false; };
  model->SetOrgFilename("a.pdf");
  RaiseEveryEvent();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_EveryPageIsDamaged) {
  pdf.pages.assign(3, {72, 36});
  pdf.onExport = [](const PdfDocument::PdfKeepGoing&) -> bool { throw FormatError("damaged"); };
  model->SetOrgFilename("a.pdf");
  RaiseEveryEvent();
}

TEST_F(EditWithoutPicture, Events_Should_DoNoHarm_When_ADocumentHasNoPages) {
  pdf.pages.clear();
  model->SetOrgFilename("a.pdf");
  EXPECT_FALSE(messages.empty());
  RaiseEveryEvent();
}

}  // namespace
}  // namespace rasterkit::test
