#include "tests/dialogs/gallery/editor_exhibits.h"

#include <QComboBox>

#include <rasterkit/dialogs/editpdfbitmap/form_edit_pdf_bmp.h>
#include <rasterkit/strings/strings.h>

#include "samples/draw_scene.h"
#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

std::unique_ptr<TFormEditPdfBmp> PhotographInEditor() {
  auto form = std::make_unique<TFormEditPdfBmp>();
  SetSizeOfExhibit(*form);
  form->Model().SetOrgCaption(ResourceString(rsEditBitmap));
  form->Model().SetBmpFilename("/photographs/site.jpg");
  form->Model().SetOrgGraphic(samples::DrawScene(1200, 900).Clone());
  return form;
}

const Exhibit kCut("edit-cut", [] {
  auto form = PhotographInEditor();
  form->Tool().SetBmpCutRect(RDRect(180, 220, 940, 790));
  return form;
});

const Exhibit kGray("edit-gray", [] {
  auto form = PhotographInEditor();
  form->Model().SpeedButtonGrayScaleClick();
  return form;
});

const Exhibit kBlackWhite("edit-black-white", [] {
  auto form = PhotographInEditor();
  form->Model().SpeedButtonBlackWhiteClick();
  return form;
});

const Exhibit kTurned("edit-rotated", [] {
  auto form = PhotographInEditor();
  form->findChild<QComboBox*>("CoBoRotation")->setEditText("10");
  return form;
});

}  // namespace
}  // namespace rasterkit::test
