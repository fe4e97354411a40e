#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QWheelEvent>

#include <rasterkit/qt/controls/paint_box.h>
#include <rasterkit/qt/controls/paint_box_reader.h>
#include <rasterkit/runtime/threads/application.h>

namespace rasterkit {
namespace {

/// Calls a copy: the handler may replace the field or destroy the box while it runs.
template <typename Handler, typename... Arguments>
void Call(Handler handler, Arguments&... arguments) {
  Application.Guard([&] { handler(arguments...); });
}

/// Passes an event to its handler; without one the event goes to the parent.
template <typename Handler, typename Event>
void Deliver(const Handler& handler, TPaintBox& box, Event& event) {
  event.setAccepted(static_cast<bool>(handler));
  if (handler) Call(handler, box, event);
}

}  // namespace

TPaintBox::TPaintBox(QWidget* parent) : QWidget(parent) {
  detail::TellReadersOfPaintBoxes();
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize TPaintBox::sizeHint() const {
  return {240, 180};
}

void TPaintBox::SetContentText(const QString& text) {
  if (text == contentText_) return;
  contentText_ = text;
  QAccessibleEvent event(this, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&event);
}

void TPaintBox::PaintFocus(QPainter& painter) const {
  if (!hasFocus()) return;
  QStyleOptionFocusRect option;
  option.initFrom(this);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void TPaintBox::paintEvent(QPaintEvent* event) {
  if (!OnPaint) return;
  QPainter painter(this);
  painter.setClipRegion(event->region());
  Call(OnPaint, *this, painter);
}

void TPaintBox::mousePressEvent(QMouseEvent* event) {
  Deliver(OnMouseDown, *this, *event);
}

void TPaintBox::mouseMoveEvent(QMouseEvent* event) {
  Deliver(OnMouseMove, *this, *event);
}

void TPaintBox::mouseReleaseEvent(QMouseEvent* event) {
  Deliver(OnMouseUp, *this, *event);
}

void TPaintBox::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  if (OnMouseLeave) Call(OnMouseLeave, *this);
}

void TPaintBox::wheelEvent(QWheelEvent* event) {
  Deliver(OnMouseWheel, *this, *event);
}

void TPaintBox::keyPressEvent(QKeyEvent* event) {
  Deliver(OnKeyDown, *this, *event);
}

void TPaintBox::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  if (OnResize) Call(OnResize, *this);
}

}  // namespace rasterkit
