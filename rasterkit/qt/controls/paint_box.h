#pragma once

#include <QWidget>
#include <functional>

#include <rasterkit/runtime/export.h>

class QPainter;

namespace rasterkit {

/// A plain area whose owner paints it and answers its mouse. Handlers are fields, so that a tool
/// that takes a box over can keep and call what was there before; an empty one does nothing, and
/// the event goes on to the parent. What a handler throws is shown and stops there (see
/// TApplication::HandleException). A handler may replace handlers, itself among them, and may
/// destroy the box.
///
/// Screen readers meet it as a picture; give it an accessible name, and a description of the keys
/// where it takes any.
///
/// Positions are pixels of the widget; `event.position()`. May stand in a Designer form as a
/// promoted widget.
class RASTERKIT_EXPORT TPaintBox : public QWidget {
  Q_OBJECT

 public:
  using PaintHandler = std::function<void(TPaintBox& sender, QPainter& painter)>;
  using MouseHandler = std::function<void(TPaintBox& sender, QMouseEvent& event)>;
  using WheelHandler = std::function<void(TPaintBox& sender, QWheelEvent& event)>;
  using KeyHandler = std::function<void(TPaintBox& sender, QKeyEvent& event)>;
  using NotifyHandler = std::function<void(TPaintBox& sender)>;

  explicit TPaintBox(QWidget* parent = nullptr);

  /// The painter is clipped to what must be painted (`painter.clipBoundingRect()`), on the form's
  /// background.
  PaintHandler OnPaint;
  /// A second press of a double click is a press as well.
  MouseHandler OnMouseDown;
  /// Moves with and without a button held.
  MouseHandler OnMouseMove;
  MouseHandler OnMouseUp;
  NotifyHandler OnMouseLeave;
  WheelHandler OnMouseWheel;
  /// Keys arrive while the box has the focus; give it a focus policy for that. A handler calls
  /// `event.ignore()` for keys that it has no use for.
  KeyHandler OnKeyDown;
  /// After the box has got its new size.
  NotifyHandler OnResize;

  /// What the box shows now, in words for screen readers ("Rectangle: left 10 ..."); empty at
  /// first. It goes before the box's own description, and readers are told of a change.
  QString ContentText() const { return contentText_; }
  void SetContentText(const QString& text);

  /// The style's focus frame along the edge while the box has the focus; for the end of OnPaint.
  void PaintFocus(QPainter& painter) const;

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  QString contentText_;
};

}  // namespace rasterkit
