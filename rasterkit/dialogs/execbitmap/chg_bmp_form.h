#pragma once

#include <QSize>
#include <memory>

#include <rasterkit/dialogs/execbitmap/change_values_model.h>
#include <rasterkit/qt/controls/paint_box.h>
#include <rasterkit/qt/forms/scaled_form.h>

class QSlider;

namespace Ui {
class FormChgBmp;
}

namespace rasterkit {

class TSpinEditInt;

/// The window of the change-values dialog. Its model must outlive it.
class TFormChgBmp : public TScaledForm {
  Q_OBJECT

 public:
  explicit TFormChgBmp(ChangeValuesModel& model, QWidget* parent = nullptr);
  ~TFormChgBmp() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  struct Controls {
    QSlider* track;
    TSpinEditInt* spin;
  };

  Controls ControlsOf(ValueControl control) const;
  void ConnectValues();
  void ConnectPreviews();
  void HidePanel(QWidget& panel);
  void ShowOperation();
  void ShowRefresh();
  void ShowValues();
  void PanBmpsResize();
  void MeasurePreviews();
  void RepaintChanged();
  void RepaintPreviews();
  void PaintPreview(TPaintBox& box, QPainter& painter, TBitmap& content, bool isOriginal);
  void PaintBoxOrgMouseDown(QMouseEvent& event);
  void PaintBoxOrgMouseMove(QMouseEvent& event);
  void PaintBoxOrgKeyDown(QKeyEvent& event);
  void PaintBoxFarbePaint(QPainter& painter);
  void ShowPanCursor(bool isDragging);
  TPoint PixelOf(const QMouseEvent& event) const;

  ChangeValuesModel& model_;
  std::unique_ptr<Ui::FormChgBmp> ui_;
  bool isShowing_ = false;
  /// Size of a preview in pixels of the screen, as passed to the model.
  QSize previewSize_;
  /// The content of the previews; empty until they are painted.
  TBitmap original_, changed_;
};

/// Runs the dialog; true if the user pressed OK.
bool ConfirmValues(ChangeValuesModel& model);

}  // namespace rasterkit
