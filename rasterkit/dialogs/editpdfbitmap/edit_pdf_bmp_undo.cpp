#include <utility>

#include <rasterkit/dialogs/editpdfbitmap/edit_pdf_bmp_model.h>

namespace rasterkit {

EditState EditPdfBmpModel::CurrentState() const {
  EditState state;
  state.rotation = fRotation;
  state.resolution = fResolution;
  state.pageNumber = fPageNumber;
  state.page = fPageNumber > 0 ? fPageNumber : controls_.Page();
  state.bmpChanged = fBmpChanged;
  // The numbers of the visible picture, without text that was typed later.
  state.resolutionText =
      names_.fIsPDF ? std::to_string(fResolution) : controls_.Text(EditControl::CoBoResolution);
  state.rotationText = std::to_string(fRotation);
  for (size_t i = 0; i < state.down.size(); ++i) state.down[i] = controls_.Down(kToggles[i]);
  if (fBmpCutRect.GetCutRectExists()) state.cut = fBmpCutRect.BmpCutRect();
  return state;
}

void EditPdfBmpModel::TakeState(const EditState& state) {
  fRotation = state.rotation;
  fResolution = state.resolution;
  fPageNumber = state.pageNumber;
  fBmpChanged = state.bmpChanged;
  controls_.SetText(EditControl::CoBoResolution, state.resolutionText);
  controls_.SetText(EditControl::CoBoRotation, state.rotationText);
  controls_.SetPage(state.page, controls_.LastPage());
  for (size_t i = 0; i < state.down.size(); ++i) controls_.SetDown(kToggles[i], state.down[i]);
  ShowPageSize();
}

void EditPdfBmpModel::TakeStepBack() {
  PictureUndo::Step step = undo_.Take();
  const std::unique_ptr<TBitmap> given = std::exchange(fWorkBitmap, std::move(step.bitmap));
  if (step.hasGraphic) fOrgGraphic = std::move(step.graphic);
  TakeState(step.state);
  fBmpCutRect.SetOrgBitmap(fWorkBitmap.get());
  if (step.state.cut) {
    fBmpCutRect.SetBmpCutRect(*step.state.cut);
  } else {
    fBmpCutRect.DelCutRect();
  }
  fBmpCutRect.ForgetCutHistory();
  CheckBmpAction();
  view_.Repaint();
}

bool EditPdfBmpModel::CanUndo() const {
  return fBmpCutRect.CanUndo() || undo_.HasStep();
}

void EditPdfBmpModel::Undo() {
  Handle([&] {
    // Every change of the picture clears the tool's history, so the tool's entries are newer.
    if (fBmpCutRect.UndoCutRect()) return;
    if (undo_.HasStep()) TakeStepBack();
  });
}

}  // namespace rasterkit
