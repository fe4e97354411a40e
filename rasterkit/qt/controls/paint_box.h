#pragma once

#include <QWidget>
#include <functional>

#include <rasterkit/runtime/export.h>

class QPainter;

namespace rasterkit {

/// A plain area whose owner paints it and handles its mouse and keys. Handlers are fields, so that
/// a tool that takes over the box can keep and call the previous ones. Without a handler the event
/// goes to the parent. Exceptions of a handler are shown to the user and end there (see
/// TApplication::HandleException). A handler may replace handlers, including itself, and may
/// destroy the box.
///
/// Screen readers see it as a picture: set an accessible name, and a description of the keys if it
/// handles any.
///
/// Positions are in pixels of the widget (`event.position()`). Can be a promoted widget in a
/// Designer form.
class RASTERKIT_EXPORT TPaintBox : public QWidget {
  Q_OBJECT

 public:
  using PaintHandler = std::function<void(TPaintBox& sender, QPainter& painter)>;
  using MouseHandler = std::function<void(TPaintBox& sender, QMouseEvent& event)>;
  using WheelHandler = std::function<void(TPaintBox& sender, QWheelEvent& event)>;
  using KeyHandler = std::function<void(TPaintBox& sender, QKeyEvent& event)>;
  using NotifyHandler = std::function<void(TPaintBox& sender)>;

  explicit TPaintBox(QWidget* parent = nullptr);

  /// Called with a painter that is clipped to the area to paint (`painter.clipBoundingRect()`), on
  /// the background of the form.
  PaintHandler OnPaint;
  /// Called for each press, including the second one of a double click.
  MouseHandler OnMouseDown;
  /// Called with and without a pressed button.
  MouseHandler OnMouseMove;
  MouseHandler OnMouseUp;
  NotifyHandler OnMouseLeave;
  WheelHandler OnMouseWheel;
  /// Called while the box has the focus, which requires a focus policy. A handler calls
  /// `event.ignore()` for keys that it does not use.
  KeyHandler OnKeyDown;
  /// Called after the box has its new size.
  NotifyHandler OnResize;

  /// Describes what the box shows now, for screen readers ("Rectangle: left 10 ..."); empty at
  /// first. It is read before the description of the box, and screen readers are notified of
  /// changes.
  QString ContentText() const { return contentText_; }
  void SetContentText(const QString& text);

  /// Paints the style's focus frame along the edge if the box has the focus; call at the end of
  /// OnPaint.
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
