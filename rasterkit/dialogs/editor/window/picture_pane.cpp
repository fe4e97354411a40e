#include <QElapsedTimer>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>

#include <rasterkit/dialogs/editor/window/picture_pane.h>
#include <rasterkit/qt/bitmap_image.h>
#include <rasterkit/qt/qt_color.h>

namespace rasterkit {
namespace {

/// Of a notch of the wheel and of a key.
constexpr double kZoomStep = 1.25;
/// Pause in milliseconds before the picture is smoothed, and length of a smoothing slice.
constexpr int kPauseBeforeRefining = 120, kRefiningSlice = 8;
constexpr int kRowsAtATime = 2;
/// Pixels of the box that an arrow key moves the picture by.
constexpr int kPanStep = 40;

double ScaleOf(const QWidget& widget) {
  return widget.devicePixelRatioF();
}

}  // namespace

PicturePane::PicturePane(TPaintBox& box) : box_(&box) {
  refineTimer_.setSingleShot(true);
  QObject::connect(&refineTimer_, &QTimer::timeout, [this] { RefineForAWhile(); });
  TakeOver();
}

PicturePane::~PicturePane() {
  if (box_ == nullptr) return;
  box_->OnPaint = nullptr;
  box_->OnMouseDown = box_->OnMouseMove = box_->OnMouseUp = nullptr;
  box_->OnMouseWheel = nullptr;
  box_->OnKeyDown = nullptr;
  box_->OnResize = nullptr;
}

void PicturePane::TakeOver() {
  box_->OnPaint = [this](TPaintBox&, QPainter& painter) { Paint(painter); };
  box_->OnMouseDown = [this](TPaintBox&, QMouseEvent& event) { OnPress(event); };
  box_->OnMouseMove = [this](TPaintBox&, QMouseEvent& event) { OnMove(event); };
  box_->OnMouseUp = [this](TPaintBox&, QMouseEvent&) { OnRelease(); };
  box_->OnMouseWheel = [this](TPaintBox&, QWheelEvent& event) { OnWheel(event); };
  box_->OnKeyDown = [this](TPaintBox&, QKeyEvent& event) { OnKey(event); };
  box_->OnResize = [this](TPaintBox&) { FollowBox(); };
}

void PicturePane::Show(const TBitmap* picture) {
  picture_ = picture;
  ++version_;
  // The view must not look at pixels that are gone.
  view_.Forget();
  if (picture_ != nullptr) zoom_.SetPicture(picture_->Width(), picture_->Height());
  FollowBox();
}

void PicturePane::SetEmptyText(const QString& text) {
  emptyText_ = text;
  box_->update();
}

void PicturePane::FollowBox() {
  const double scale = ScaleOf(*box_);
  zoom_.SetBox(static_cast<int>(std::ceil(box_->width() * scale)),
               static_cast<int>(std::ceil(box_->height() * scale)));
  Changed();
}

void PicturePane::Changed() {
  refineTimer_.stop();
  box_->update();
  ShowCursor();
  if (OnZoomChanged) OnZoomChanged();
}

void PicturePane::Fit() {
  zoom_.Fit();
  Changed();
}

void PicturePane::ShowActualSize() {
  zoom_.ShowActualSize();
  Changed();
}

void PicturePane::ZoomIn() {
  zoom_.ZoomBy(kZoomStep);
  Changed();
}

void PicturePane::ZoomOut() {
  zoom_.ZoomBy(1 / kZoomStep);
  Changed();
}

void PicturePane::ZoomBy(double factor, const QPointF& place) {
  const double scale = ScaleOf(*box_);
  zoom_.ZoomBy(factor, place.x() * scale, place.y() * scale);
  Changed();
}

void PicturePane::PanBy(const QPointF& way) {
  const double scale = ScaleOf(*box_);
  zoom_.PanBy(way.x() * scale, way.y() * scale);
  Changed();
}

void PicturePane::OnPress(const QMouseEvent& event) {
  const bool isForDrag = event.button() == Qt::LeftButton || event.button() == Qt::MiddleButton;
  if (!isForDrag || !zoom_.CanPan()) return;
  isDragging_ = true;
  dragStart_ = event.position();
  ShowCursor();
}

void PicturePane::OnMove(const QMouseEvent& event) {
  if (!isDragging_) return;
  const QPointF way = event.position() - dragStart_;
  dragStart_ = event.position();
  PanBy(way);
}

void PicturePane::OnRelease() {
  isDragging_ = false;
  ShowCursor();
}

void PicturePane::ShowCursor() {
  const Qt::CursorShape still = zoom_.CanPan() ? Qt::OpenHandCursor : Qt::ArrowCursor;
  const Qt::CursorShape shape = isDragging_ ? Qt::ClosedHandCursor : still;
  if (box_->cursor().shape() != shape) box_->setCursor(shape);
}

void PicturePane::OnWheel(QWheelEvent& event) {
  constexpr int kNotch = QWheelEvent::DefaultDeltasPerStep;
  // The deltas of finer wheels and touch pads are added up; a change of direction forgets them.
  const int delta = event.angleDelta().y();
  if ((delta < 0) != (wheelRest_ < 0)) wheelRest_ = 0;
  wheelRest_ += delta;
  const int notches = wheelRest_ / kNotch;
  wheelRest_ -= notches * kNotch;
  for (int i = 0; i < std::abs(notches); ++i) {
    ZoomBy(notches > 0 ? kZoomStep : 1 / kZoomStep, event.position());
  }
  event.accept();
}

void PicturePane::OnKey(QKeyEvent& event) {
  event.setAccepted(UseKey(event));
}

bool PicturePane::UseKey(const QKeyEvent& event) {
  if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
  switch (event.key()) {
    case Qt::Key_Plus:
      ZoomIn();
      return true;
    case Qt::Key_Minus:
      ZoomOut();
      return true;
    case Qt::Key_Left:
      PanBy({kPanStep, 0});
      return true;
    case Qt::Key_Right:
      PanBy({-kPanStep, 0});
      return true;
    case Qt::Key_Up:
      PanBy({0, kPanStep});
      return true;
    case Qt::Key_Down:
      PanBy({0, -kPanStep});
      return true;
    default:
      return false;
  }
}

void PicturePane::Paint(QPainter& painter) {
  if (picture_ == nullptr || picture_->Empty()) {
    painter.drawText(box_->rect(), Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
    return box_->PaintFocus(painter);
  }
  // The box may be on another screen, whose pixels are smaller.
  const PictureView::Window window = WindowFor(painter);
  zoom_.SetBox(window.width, window.height);
  view_.Show(picture_, version_, WindowFor(painter));
  QImage image = ImageOfBitmap(view_.Plain());
  image.setDevicePixelRatio(painter.device()->devicePixelRatioF());
  painter.drawImage(QPointF(0, 0), image);
  const bool isBusy = isDragging_ || refineTimer_.isActive();
  if (!isBusy && view_.NeedsRefining()) refineTimer_.start(kPauseBeforeRefining);
  box_->PaintFocus(painter);
}

PictureView::Window PicturePane::WindowFor(const QPainter& painter) const {
  const double scale = painter.device()->devicePixelRatioF();
  return {static_cast<int>(std::ceil(box_->width() * scale)),
          static_cast<int>(std::ceil(box_->height() * scale)), zoom_.Place(),
          ColorOf(box_->palette().color(box_->backgroundRole()))};
}

void PicturePane::RefineForAWhile() {
  if (isDragging_ || box_ == nullptr || picture_ == nullptr) return;
  QElapsedTimer clock;
  clock.start();
  while (view_.RefineRows(kRowsAtATime)) {
    if (clock.elapsed() >= kRefiningSlice) return refineTimer_.start(0);
  }
  box_->update();
}

}  // namespace rasterkit
