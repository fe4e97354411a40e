#pragma once

#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_rect.h>
#include <rasterkit/dialogs/editpdfbitmap/edit_pdf_bmp_model.h>
#include <rasterkit/qt/forms/scaled_form.h>

namespace Ui {
class FormEditPdfBmp;
}

namespace rasterkit {

/// The window of the editor. It forwards all events to its model and shows the model's state.
class TFormEditPdfBmp : public TScaledForm, private EditPdfBmpView {
  Q_OBJECT

 public:
  explicit TFormEditPdfBmp(QWidget* parent = nullptr);
  ~TFormEditPdfBmp() override;

  EditPdfBmpModel& Model() { return *model_; }
  TBmpCutRect& Tool() { return *fBmpCutRect; }

  /// Shows the window until the model closes it. `onShown` runs first in its loop, so that long
  /// operations are visible and can be canceled.
  int ShowEditor(std::function<void()> onShown = {});

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // EditPdfBmpView
  void SetVisible(EditControl control, bool visible) override;
  void SetEnabled(EditControl control, bool enabled) override;
  void SetDown(EditControl button, bool down) override;
  void SetText(EditControl control, const std::string& text) override;
  void SetPage(int page, int lastPage) override;
  void SetCaption(const std::string& caption) override;
  void WidenButtonPanel(int editButtons) override;
  void Repaint() override;
  void ShowHourglass(bool shown) override;
  void ShowRendering(bool active) override;
  void Close(int modalResult) override;
  bool ChangeBitmap(int32_t operation, TBitmap& bitmap, TChgBmpValuesRec& values) override;
  bool EditSize(int32_t& width, int32_t& height, bool& proportional) override;

  QWidget& WidgetOf(EditControl control) const;
  void Enable(QWidget& widget, bool enabled);
  void DressButtons();
  void ConnectButtons();
  void ConnectBoxes();
  void ConnectPicture();
  void KeepMinimumSize();
  void ShowPictureMenu(const QPoint& place);

  void WatchKeyboard();
  /// Returns true if the key was used and `receiver` must not get it.
  bool KeyDown(const QObject& receiver, const QKeyEvent& event);
  bool PressButton(const QObject& receiver, const QKeyEvent& event);
  bool TakePage(const QObject& receiver, const QKeyEvent& event);
  bool IsForPage(const QObject& receiver, const QKeyEvent& event) const;
  void LeaveBox(const QObject& box);
  void TellIfCtrlIsHeld();

  std::unique_ptr<Ui::FormEditPdfBmp> ui_;
  std::unique_ptr<TBmpCutRect> fBmpCutRect;
  std::unique_ptr<EditPdfBmpModel> model_;
  /// The control that had the focus when it was disabled; it gets the focus back.
  QPointer<QWidget> focusBefore_;
  QTimer progressDelay_;
  int wheelRest_ = 0;
  bool hasHourglass_ = false;
};

}  // namespace rasterkit
