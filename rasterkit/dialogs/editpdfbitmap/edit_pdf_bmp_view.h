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
  /// What the page will be at the resolution in the box: pixels, millimetres, memory.
  LabelPageSize,
  NaviResultPost,
  NaviResultCancel,
  NaviResultHelp
};
inline constexpr int kEditControls = 20;

/// What the editor's model needs of its window. What it changes here it knows already: events that
/// a control raises while it is being set are ignored.
///
/// The first five are called for all controls when the model is made, so that the window need not
/// know how it starts. Nothing here may throw but the two dialogs.
class EditPdfBmpView {
 public:
  virtual void SetVisible(EditControl control, bool visible) = 0;
  virtual void SetEnabled(EditControl control, bool enabled) = 0;
  /// Of the four buttons that stay down.
  virtual void SetDown(EditControl button, bool down) = 0;
  /// Of labels and of the boxes' edit lines.
  virtual void SetText(EditControl control, const std::string& text) = 0;
  /// The page and the last page that `SpinEditPage` offers.
  virtual void SetPage(int page, int lastPage) = 0;

  virtual void SetCaption(const std::string& caption) = 0;
  /// Widens `PanelControlButtons` by so many widths of `SpeedButtonEdit`; negative to narrow it.
  virtual void WidenButtonPanel(int editButtons) = 0;
  /// Asks for a new painting of the picture, soon.
  virtual void Repaint() = 0;
  /// The hourglass or the usual cursor.
  virtual void ShowHourglass(bool shown) = 0;
  /// From `true` to `false` a page is being rendered, within an event. The controls are disabled
  /// by then, all but the cancel button, and the host's loop is turned all the time (the port
  /// `messagePump`).
  virtual void ShowRendering(bool active) = 0;
  /// Ends the window with `mrOk` or `mrCancel`. It may not be shown yet: then it must not be.
  virtual void Close(int modalResult) = 0;

  /// Runs the change-values dialog (see ChangeBitmap).
  virtual bool ChangeBitmap(int32_t operation, TBitmap& bitmap, TChgBmpValuesRec& values) = 0;
  /// Runs the change-size dialog (see EditSize).
  virtual bool EditSize(int32_t& width, int32_t& height, bool& proportional) = 0;

 protected:
  ~EditPdfBmpView() = default;
};

}  // namespace rasterkit
