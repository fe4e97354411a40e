#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>

#include <rasterkit/dialogs/values/preview_box.h>
#include <rasterkit/qt/qt_color.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

/// In pixels of the widget.
constexpr int kLoupeSide = 150, kDividerReach = 6, kPanStep = 20, kLoupeStep = 8;
constexpr double kDividerStep = 0.02;
constexpr int kNotch = 120;

QSize PixelSize(const QWidget& box) {
  return (QSizeF(box.size()) * box.devicePixelRatioF()).toSize();
}

QRect ToRect(const TRect& rect) {
  return {rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top};
}

}  // namespace

PreviewBox::PreviewBox(ValuesViewport& viewport, PreviewRenderer& renderer, QWidget* parent)
    : TPaintBox(parent), viewport_(viewport), renderer_(renderer) {
  setFocusPolicy(Qt::StrongFocus);
  renderer_.OnArrived = [this] {
    picture_ = QImage();
    update();
  };
  OnPaint = [this](TPaintBox&, QPainter& painter) { Paint(painter); };
  OnResize = [this](TPaintBox&) { Measure(); };
  OnMouseDown = [this](TPaintBox&, QMouseEvent& event) { MouseDown(event); };
  OnMouseMove = [this](TPaintBox&, QMouseEvent& event) { MouseMove(event); };
  OnMouseUp = [this](TPaintBox&, QMouseEvent& event) {
    movesDivider_ = pans_ = false;
    ShowCursor(PixelOf(event.position()));
  };
  OnMouseLeave = [this](TPaintBox&) {
    cursor_.reset();
    update();
  };
  OnMouseWheel = [this](TPaintBox&, QWheelEvent& event) { Wheel(event); };
  OnKeyDown = [this](TPaintBox&, QKeyEvent& event) { KeyDown(event); };
}

void PreviewBox::changeEvent(QEvent* event) {
  TPaintBox::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) Refresh();
}

void PreviewBox::Measure() {
  pixels_ = PixelSize(*this);
  viewport_.SetBox(pixels_.width(), pixels_.height());
  viewport_.SetRightToLeft(isRightToLeft());
  Changed();
}

void PreviewBox::Refresh() {
  picture_ = QImage();
  update();
}

void PreviewBox::Changed() {
  Refresh();
  if (OnView) OnView();
}

void PreviewBox::SetLoupe(bool isOn) {
  hasLoupe_ = isOn;
  update();
}

void PreviewBox::SetComparing(bool isOn) {
  if (isOn == isComparing_) return;
  isComparing_ = isOn;
  Refresh();
}

void PreviewBox::ZoomBy(int steps) {
  viewport_.ZoomBy(steps);
  Changed();
}

TColor PreviewBox::Ground() const {
  return ColorOf(palette().color(QPalette::Window));
}

std::vector<PreviewArea> PreviewBox::Areas() const {
  return isComparing_ ? viewport_.AreasOf(false) : viewport_.Areas();
}

TPoint PreviewBox::PixelOf(QPointF position) const {
  const QPointF pixel = position * devicePixelRatioF();
  return {static_cast<int>(std::floor(pixel.x())), static_cast<int>(std::floor(pixel.y()))};
}

const QImage& PreviewBox::Picture() {
  if (picture_.isNull()) picture_ = renderer_.Render(viewport_, Areas(), Ground());
  return picture_;
}

void PreviewBox::Paint(QPainter& painter) {
  // On another screen the box may have another number of pixels although its size is the same.
  if (PixelSize(*this) != pixels_) {
    Measure();
  }
  if (pixels_.isEmpty()) return PaintFocus(painter);
  QImage image = Picture();
  const std::vector<PreviewArea> areas = Areas();
  const bool hasDivider = viewport_.Mode() == PreviewMode::split && !isComparing_;
  // A painter on the image would copy all of it.
  if (hasDivider || HasLoupe()) {
    QPainter drawing(&image);
    if (hasDivider) PaintDivider(drawing);
    for (const PreviewArea& area : areas) PaintLoupe(drawing, area);
  }
  image.setDevicePixelRatio(devicePixelRatioF());
  painter.drawImage(0, 0, image);
  PaintCaptions(painter, areas);
  PaintFocus(painter);
}

bool PreviewBox::HasLoupe() const {
  return hasLoupe_ && cursor_ && !movesDivider_ && !pans_ && viewport_.Zoom() < 1;
}

QRect PreviewBox::LoupeRect(const PreviewArea& area) const {
  if (!HasLoupe()) return {};
  const std::vector<PreviewArea> areas = Areas();
  const PreviewArea* const under = ValuesViewport::AreaAt(*cursor_, areas);
  if (under == nullptr) return {};
  const int side = qRound(kLoupeSide * devicePixelRatioF());
  // Side by side both pictures have a loupe, at the same pixel.
  const bool isSplit = viewport_.Mode() == PreviewMode::split;
  if (isSplit && under->isChanged != area.isChanged) return {};
  const int x = cursor_->X - under->pane.Left + area.pane.Left;
  return {x - side / 2, cursor_->Y - side / 2, side, side};
}

void PreviewBox::PaintLoupe(QPainter& painter, const PreviewArea& area) {
  const QRect loupe = LoupeRect(area);
  if (loupe.isEmpty()) return;
  const TPoint pixel = viewport_.PixelAt(*cursor_);
  const TRect part{pixel.X - loupe.width() / 2, pixel.Y - loupe.height() / 2,
                   pixel.X - loupe.width() / 2 + loupe.width(),
                   pixel.Y - loupe.height() / 2 + loupe.height()};
  painter.setClipRect(ToRect(area.pane));
  painter.drawImage(loupe.topLeft(), renderer_.RenderPart(part, area.isChanged, Ground()));
  // Two tones are seen on any picture.
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::white, 1));
  painter.drawRect(loupe.adjusted(-1, -1, 0, 0));
  painter.setPen(QPen(Qt::black, 1));
  painter.drawRect(loupe.adjusted(-2, -2, 1, 1));
}

void PreviewBox::PaintDivider(QPainter& painter) const {
  const int x = viewport_.DividerColumn(), height = viewport_.Box().Y;
  const int width = std::max(qRound(devicePixelRatioF()), 1);
  painter.fillRect(x - 2 * width, 0, 4 * width, height, Qt::black);
  painter.fillRect(x - width, 0, 2 * width, height, Qt::white);
  const int radius = qRound(9 * devicePixelRatioF());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(Qt::black, width));
  painter.setBrush(Qt::white);
  painter.drawEllipse(QPointF(x, height / 2.0), radius, radius);
  const double arm = radius * 0.5;
  painter.drawPolyline(QPolygonF({{x - arm * 0.4, height / 2.0 - arm},
                                  {x - arm * 1.2, height / 2.0},
                                  {x - arm * 0.4, height / 2.0 + arm}}));
  painter.drawPolyline(QPolygonF({{x + arm * 0.4, height / 2.0 - arm},
                                  {x + arm * 1.2, height / 2.0},
                                  {x + arm * 0.4, height / 2.0 + arm}}));
  painter.setRenderHint(QPainter::Antialiasing, false);
}

void PreviewBox::PaintCaptions(QPainter& painter, const std::vector<PreviewArea>& areas) const {
  const double scale = devicePixelRatioF();
  constexpr int kMargin = 4;
  for (const PreviewArea& area : areas) {
    const QString text = ResourceText(area.isChanged ? rsChanged : rsOriginal);
    const QRectF box(area.box.Left / scale, area.box.Top / scale,
                     (area.box.Right - area.box.Left) / scale,
                     (area.box.Bottom - area.box.Top) / scale);
    const QSize size = fontMetrics().size(0, text) + QSize(2 * kMargin, kMargin);
    // At the outer edge, where the divider does not cover it.
    const bool isFirst = &area == &areas.front();
    const bool isLeft = isFirst != isRightToLeft() || areas.size() == 1;
    if (size.width() + 2 * kMargin > box.width()) continue;
    const QPointF corner(isLeft ? box.left() + kMargin : box.right() - kMargin - size.width(),
                         box.top() + kMargin);
    const QRectF chip(corner, QSizeF(size));
    painter.fillRect(chip, palette().color(QPalette::Window));
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(chip, Qt::AlignCenter, text);
  }
}

void PreviewBox::ShowCursor(TPoint at) {
  const int reach = qRound(kDividerReach * devicePixelRatioF());
  if (movesDivider_ || viewport_.IsOnDivider(at.X, reach)) return setCursor(Qt::SplitHCursor);
  if (pans_) return setCursor(Qt::ClosedHandCursor);
  if (viewport_.CanPan()) return setCursor(Qt::OpenHandCursor);
  unsetCursor();
}

void PreviewBox::MouseDown(QMouseEvent& event) {
  if (event.button() != Qt::LeftButton && event.button() != Qt::MiddleButton) return;
  dragged_ = PixelOf(event.position());
  const int reach = qRound(kDividerReach * devicePixelRatioF());
  movesDivider_ = event.button() == Qt::LeftButton && viewport_.IsOnDivider(dragged_.X, reach);
  pans_ = !movesDivider_ && viewport_.CanPan();
  ShowCursor(dragged_);
}

void PreviewBox::MouseMove(QMouseEvent& event) {
  const TPoint at = PixelOf(event.position());
  cursor_ = at;
  if (movesDivider_) {
    viewport_.MoveDividerTo(at.X);
    Refresh();
  } else if (pans_) {
    if (viewport_.PanBy(at.X - dragged_.X, at.Y - dragged_.Y)) Changed();
    dragged_ = at;
  } else if (HasLoupe()) {
    update();
  }
  ShowCursor(at);
}

void PreviewBox::Wheel(QWheelEvent& event) {
  wheelRest_ += event.angleDelta().y();
  const int steps = wheelRest_ / kNotch;
  wheelRest_ -= steps * kNotch;
  if (steps == 0) return;
  viewport_.ZoomBy(steps, PixelOf(event.position()));
  Changed();
}

void PreviewBox::KeyDown(QKeyEvent& event) {
  int right = 0, down = 0;
  switch (event.key()) {
    case Qt::Key_Left:
      right = -1;
      break;
    case Qt::Key_Right:
      right = 1;
      break;
    case Qt::Key_Up:
      down = -1;
      break;
    case Qt::Key_Down:
      down = 1;
      break;
    case Qt::Key_Plus:
      return ZoomBy(1);
    case Qt::Key_Minus:
      return ZoomBy(-1);
    default:
      return event.ignore();
  }
  if (event.modifiers() & Qt::ControlModifier) {
    if (viewport_.Mode() != PreviewMode::split) return event.ignore();
    const int forward = isRightToLeft() ? -right : right;
    viewport_.SetDivider(viewport_.Divider() + forward * kDividerStep);
    return Changed();
  }
  if (viewport_.CanPan()) {
    const int step = qRound(kPanStep * devicePixelRatioF());
    // The view moves, not the picture.
    if (viewport_.PanBy(-right * step, -down * step)) Changed();
    return;
  }
  if (!hasLoupe_) return event.ignore();
  const int step = qRound(kLoupeStep * devicePixelRatioF());
  const TRect pane = Areas().front().pane;
  TPoint at = cursor_.value_or(TPoint{(pane.Left + pane.Right) / 2, (pane.Top + pane.Bottom) / 2});
  at.X = std::clamp(at.X + right * step, 0, viewport_.Box().X - 1);
  at.Y = std::clamp(at.Y + down * step, 0, viewport_.Box().Y - 1);
  cursor_ = at;
  update();
}

}  // namespace rasterkit
