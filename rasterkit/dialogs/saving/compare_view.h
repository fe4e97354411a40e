#pragma once

#include <QLabel>
#include <QWidget>

#include <rasterkit/dialogs/saving/saving_model.h>
#include <rasterkit/qt/controls/paint_box.h>

namespace rasterkit::detail {

/// The 1:1 view: the picture before and after saving side by side, moved together by mouse and
/// keys. Internal to this folder.
class CompareView : public QWidget {
 public:
  explicit CompareView(QWidget* parent);

  /// The model must outlive the view.
  void SetModel(SavingModel& model);
  /// Before the model goes: a view that is hidden later tells it no more.
  void ForgetModel() { model_ = nullptr; }
  /// The model has other pixels or another place.
  void ShowParts();

  QSize sizeHint() const override;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  TPaintBox* MakeBox(const char* name, QLabel*& label, const char* labelName);
  void Paint(TPaintBox& box, QPainter& painter, const ShownPart& part) const;
  void Resize();
  void Press(QMouseEvent& event);
  void Drag(QMouseEvent& event);
  void Key(QKeyEvent& event);
  double Scale() const { return devicePixelRatioF(); }

  SavingModel* model_ = nullptr;
  QLabel *labelBefore_ = nullptr, *labelAfter_ = nullptr, *labelPart_ = nullptr;
  TPaintBox *boxBefore_ = nullptr, *boxAfter_ = nullptr;
  QPointF dragged_;
};

}  // namespace rasterkit::detail
