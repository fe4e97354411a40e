#pragma once

#include <array>
#include <string>

#include <rasterkit/dialogs/editpdfbitmap/edit_pdf_bmp_view.h>

namespace rasterkit {

/// What the window's controls show, kept beside the window so that it can be asked for. Everything
/// that changes is handed to the view at once.
class EditControls {
 public:
  explicit EditControls(EditPdfBmpView& view);

  bool Visible(EditControl control) const { return Of(control).visible; }
  void SetVisible(EditControl control, bool visible);

  /// Whether it can be used now: not while busy, unless it is the cancel button.
  bool Enabled(EditControl control) const;
  void SetEnabled(EditControl control, bool enabled);
  /// Disables every control but the cancel button for a while.
  void SetBusy(bool busy);

  /// Mirror, grey, black-white and 256 colours stay down when clicked. They are one group: at most
  /// one of them is down, and a click on that one lifts it.
  bool Down(EditControl button) const { return Of(button).down; }
  void SetDown(EditControl button, bool down);
  void Click(EditControl button);
  /// Hands the four to the view once more, for a window whose buttons go down by themselves.
  void ShowDown();

  const std::string& Text(EditControl control) const { return Of(control).text; }
  void SetText(EditControl control, const std::string& text);
  /// The user (or a list) wrote a box's text: the view has it already.
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
