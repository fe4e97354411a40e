#pragma once

#include <cstdint>
#include <string>

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>

namespace rasterkit {

class TBitmap;

/// The controls of the editor's window, by their object names.
enum class EditControl {
  SpeedButtonOpen,
  SpeedButtonViewZoom,
  SpeedButtonViewOrig,
  SpeedButtonMirror,
  SpeedButtonGrayScale,
  SpeedButtonBlackWhite,
  SpeedButton256Colors,
  SpeedButtonCut,
  SpeedButtonEdit,
  SpeedButtonSave,
  LabelDpiX,
  CoBoResolution,
  LabelRotation,
  CoBoRotation,
  LabelPage,
  SpinEditPage,
  /// The size of the page at the resolution in the box: pixels, millimeters, memory.
  LabelPageSize,
  NaviResultPost,
  NaviResultCancel,
  NaviResultHelp
};
inline constexpr int kEditControls = 20;

/// What the editor's model needs from its window. The model ignores events that a control emits
/// while the model sets it.
///
/// The first five functions are called for all controls when the model is created, so that the
/// window needs no initial state. Only the two dialogs may throw.
class EditPdfBmpView {
 public:
  virtual void SetVisible(EditControl control, bool visible) = 0;
  virtual void SetEnabled(EditControl control, bool enabled) = 0;
  /// Sets one of the four buttons that stay down.
  virtual void SetDown(EditControl button, bool down) = 0;
  /// Sets the text of a label or of the edit line of a box.
  virtual void SetText(EditControl control, const std::string& text) = 0;
  /// Sets the page and the last page of `SpinEditPage`.
  virtual void SetPage(int page, int lastPage) = 0;

  virtual void SetCaption(const std::string& caption) = 0;
  /// Widens `PanelControlButtons` by `editButtons` widths of `SpeedButtonEdit`; a negative number
  /// narrows it.
  virtual void WidenButtonPanel(int editButtons) = 0;
  /// Schedules a repaint of the picture.
  virtual void Repaint() = 0;
  /// Shows the hourglass or the usual cursor.
  virtual void ShowHourglass(bool shown) = 0;
  /// Called with true before and with false after a page is rendered, within one event. Meanwhile
  /// all controls except the cancel button are disabled and the host's loop is run (the port
  /// `messagePump`).
  virtual void ShowRendering(bool active) = 0;
  /// Closes the window with `mrOk` or `mrCancel`. If it is not shown yet, it must not be shown.
  virtual void Close(int modalResult) = 0;

  /// Runs the change-values dialog (see ChangeBitmap).
  virtual bool ChangeBitmap(int32_t operation, TBitmap& bitmap, TChgBmpValuesRec& values) = 0;
  /// Runs the change-size dialog (see EditSize).
  virtual bool EditSize(int32_t& width, int32_t& height, bool& proportional) = 0;

 protected:
  ~EditPdfBmpView() = default;
};

}  // namespace rasterkit
