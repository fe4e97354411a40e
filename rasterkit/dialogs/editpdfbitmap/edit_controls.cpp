#include <rasterkit/dialogs/editpdfbitmap/edit_controls.h>

namespace rasterkit {

EditControls::EditControls(EditPdfBmpView& view) : view_(view) {
  // The cut is applied when the picture is saved, so its button has no function.
  for (const EditControl hidden :
       {EditControl::SpeedButtonCut, EditControl::LabelDpiX, EditControl::CoBoResolution,
        EditControl::LabelPage, EditControl::SpinEditPage, EditControl::LabelPageSize}) {
    Of(hidden).visible = false;
  }
  Of(EditControl::SpeedButtonCut).enabled = false;
  TakeText(EditControl::CoBoResolution, "150");
  TakeText(EditControl::CoBoRotation, "0");
  ShowAll();
}

void EditControls::ShowAll() {
  for (int i = 0; i < kEditControls; ++i) {
    const auto control = static_cast<EditControl>(i);
    view_.SetVisible(control, Visible(control));
    view_.SetEnabled(control, Enabled(control));
  }
  ShowDown();
  for (const EditControl box : {EditControl::CoBoResolution, EditControl::CoBoRotation}) {
    view_.SetText(box, Text(box));
  }
  view_.SetPage(page_, lastPage_);
}

void EditControls::SetVisible(EditControl control, bool visible) {
  Of(control).visible = visible;
  view_.SetVisible(control, visible);
}

bool EditControls::Enabled(EditControl control) const {
  if (isBusy_) return control == EditControl::NaviResultCancel;
  return Of(control).enabled;
}

void EditControls::SetEnabled(EditControl control, bool enabled) {
  Of(control).enabled = enabled;
  view_.SetEnabled(control, Enabled(control));
}

void EditControls::SetBusy(bool busy) {
  isBusy_ = busy;
  for (int i = 0; i < kEditControls; ++i) {
    const auto control = static_cast<EditControl>(i);
    view_.SetEnabled(control, Enabled(control));
  }
}

void EditControls::SetDown(EditControl button, bool down) {
  Of(button).down = down;
  view_.SetDown(button, down);
}

void EditControls::Click(EditControl button) {
  const bool goesDown = !Down(button);
  for (const EditControl toggle : kToggles) SetDown(toggle, toggle == button && goesDown);
}

void EditControls::ShowDown() {
  for (const EditControl toggle : kToggles) view_.SetDown(toggle, Down(toggle));
}

void EditControls::SetText(EditControl control, const std::string& text) {
  Of(control).text = text;
  view_.SetText(control, text);
}

void EditControls::SetPage(int page, int lastPage) {
  page_ = page;
  lastPage_ = lastPage;
  view_.SetPage(page, lastPage);
}

}  // namespace rasterkit
