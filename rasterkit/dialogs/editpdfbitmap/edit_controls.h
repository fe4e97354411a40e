#pragma once

#include <array>
#include <string>

#include <rasterkit/dialogs/editpdfbitmap/edit_pdf_bmp_view.h>

namespace rasterkit {

/// The state of the window's controls, kept outside the window so that it can be read. Every change
/// is passed to the view at once.
class EditControls {
 public:
  explicit EditControls(EditPdfBmpView& view);

  bool Visible(EditControl control) const { return Of(control).visible; }
  void SetVisible(EditControl control, bool visible);

  /// Whether the control is enabled now: not while busy, except for the cancel button.
  bool Enabled(EditControl control) const;
  void SetEnabled(EditControl control, bool enabled);
  /// Disables every control except the cancel button while busy.
  void SetBusy(bool busy);

  /// Mirror, gray, black-white and 256 colors stay down when clicked. They are one group: at most
  /// one of them is down, and a click on it releases it.
  bool Down(EditControl button) const { return Of(button).down; }
  void SetDown(EditControl button, bool down);
  void Click(EditControl button);
  /// Passes the state of the four buttons to the view again, for a window whose buttons change by
  /// themselves.
  void ShowDown();

  const std::string& Text(EditControl control) const { return Of(control).text; }
  void SetText(EditControl control, const std::string& text);
  /// Stores the text that the user (or a list) entered into a box, which shows it already.
  void TakeText(EditControl control, const std::string& text) { Of(control).text = text; }

  int Page() const { return page_; }
  int LastPage() const { return lastPage_; }
  void SetPage(int page, int lastPage);
  void TakePage(int page) { page_ = page; }

 private:
  struct State {
    bool visible = true, enabled = true, down = false;
    std::string text;
  };

  State& Of(EditControl control) { return states_[static_cast<size_t>(control)]; }
  const State& Of(EditControl control) const { return states_[static_cast<size_t>(control)]; }
  void ShowAll();

  EditPdfBmpView& view_;
  std::array<State, kEditControls> states_;
  int page_ = 1, lastPage_ = 1000;
  bool isBusy_ = false;
};

/// The buttons that stay down.
inline constexpr EditControl kToggles[] = {
    EditControl::SpeedButtonMirror, EditControl::SpeedButtonGrayScale,
    EditControl::SpeedButtonBlackWhite, EditControl::SpeedButton256Colors};

}  // namespace rasterkit
