#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <array>
#include <cmath>
#include <optional>
#include <string>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_rect.h>
#include <rasterkit/dialogs/bitmapframe/cut_outline.h>
#include <rasterkit/qt/bitmap_image.h>
#include <rasterkit/qt/controls/redo_keys.h>
#include <rasterkit/qt/qt_color.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

constexpr int kOutlineColor = 0x808080;
/// Pause in milliseconds before the picture is smoothed, and length of a smoothing slice.
constexpr int kPauseBeforeRefining = 120, kRefiningSlice = 8;
constexpr int kRowsAtATime = 2;
/// Step of an arrow key when panning, in pixels of the box.
constexpr int kPanStep = 20;

QRect QtRect(const TRect& rect) {
  return QRect(QPoint(rect.Left, rect.Top), QPoint(rect.Right - 1, rect.Bottom - 1));
}

Qt::CursorShape ShapeOf(CutCursor cursor) {
  switch (cursor) {
    case CutCursor::sizeAll:
      return Qt::SizeAllCursor;
    case CutCursor::cross:
      return Qt::CrossCursor;
    case CutCursor::westEast:
      return Qt::SizeHorCursor;
    case CutCursor::northSouth:
      return Qt::SizeVerCursor;
    case CutCursor::northWestSouthEast:
      return Qt::SizeFDiagCursor;
    case CutCursor::northEastSouthWest:
      return Qt::SizeBDiagCursor;
    case CutCursor::pan:
      return Qt::ClosedHandCursor;
    case CutCursor::standard:
      break;
  }
  return Qt::ArrowCursor;
}

/// Returns the button of an event; the model has only three.
CutButton ButtonOf(const QMouseEvent& event) {
  if (event.button() == Qt::LeftButton) return CutButton::left;
  return event.button() == Qt::MiddleButton ? CutButton::middle : CutButton::right;
}

CutButtons HeldIn(const QMouseEvent& event) {
  const Qt::MouseButtons others = event.buttons() & ~(Qt::LeftButton | Qt::MiddleButton);
  const Qt::KeyboardModifiers keys = event.modifiers() & (Qt::ShiftModifier | Qt::ControlModifier |
                                                          Qt::AltModifier | Qt::MetaModifier);
  // Together with another button or Alt they shape nothing.
  const bool areAlone = others == 0 && (keys & (Qt::AltModifier | Qt::MetaModifier)) == 0;
  return {event.buttons().testFlag(Qt::LeftButton), event.buttons().testFlag(Qt::MiddleButton),
          others != 0 || keys != 0, areAlone && keys.testFlag(Qt::ShiftModifier),
          areAlone && keys.testFlag(Qt::ControlModifier)};
}

/// Returns one step in the direction of an arrow key; nothing for other keys.
std::optional<TPoint> ArrowOf(int key) {
  switch (key) {
    case Qt::Key_Left:
      return TPoint{-1, 0};
    case Qt::Key_Right:
      return TPoint{1, 0};
    case Qt::Key_Up:
      return TPoint{0, -1};
    case Qt::Key_Down:
      return TPoint{0, 1};
    default:
      return std::nullopt;
  }
}

}  // namespace

TBmpCutRect::TBmpCutRect(TPaintBox* paintBox, QLabel* sizeLabel, const CropRules& rules)
    : BmpCutModel(static_cast<CutView&>(*this), rules), fPaintBox(paintBox), fSizeLabel(sizeLabel) {
  refineTimer_.setSingleShot(true);
  QObject::connect(&refineTimer_, &QTimer::timeout, [this] { RefineForAWhile(); });
  if (fPaintBox != nullptr) TakeOver();
}

void TBmpCutRect::TakeOver() {
  FSavePaint = fPaintBox->OnPaint;
  fPaintBox->OnPaint = [this](TPaintBox& box, QPainter& painter) { Paint(box, painter); };
  fPaintBox->OnMouseDown = [this](TPaintBox&, QMouseEvent& event) {
    const QPoint point = event.position().toPoint();
    MouseDown(ButtonOf(event), HeldIn(event), point.x(), point.y());
  };
  fPaintBox->OnMouseMove = [this](TPaintBox&, QMouseEvent& event) {
    const QPoint point = event.position().toPoint();
    MouseMove(HeldIn(event), point.x(), point.y());
  };
  fPaintBox->OnMouseUp = [this](TPaintBox&, QMouseEvent& event) {
    const QPoint point = event.position().toPoint();
    MouseUp(ButtonOf(event), point.x(), point.y());
  };
  fPaintBox->OnMouseLeave = [this](TPaintBox&) { MouseLeave(); };
}

TBmpCutRect::~TBmpCutRect() {
  if (fPaintBox == nullptr) return;
  fPaintBox->OnPaint = FSavePaint;
  fPaintBox->OnMouseDown = fPaintBox->OnMouseMove = fPaintBox->OnMouseUp = nullptr;
  fPaintBox->OnMouseLeave = nullptr;
  fPaintBox->unsetCursor();
  fPaintBox->update();
}

void TBmpCutRect::OnResize(TPaintBox&) {
  BmpCutModel::OnResize();
}

void TBmpCutRect::OnMouseWheel(TPaintBox&, QWheelEvent& event) {
  constexpr int kNotch = QWheelEvent::DefaultDeltasPerStep;
  // A change of direction discards the sum of before.
  const int delta = event.angleDelta().y();
  if ((delta < 0) != (wheelDelta_ < 0)) wheelDelta_ = 0;
  wheelDelta_ += delta;
  const QPoint point = event.position().toPoint();
  bool handled = true;
  for (; std::abs(wheelDelta_) >= kNotch; wheelDelta_ -= wheelDelta_ > 0 ? kNotch : -kNotch) {
    OnMouseWheel(wheelDelta_, {point.x(), point.y()}, handled);
  }
  event.setAccepted(handled);
}

void TBmpCutRect::OnKeyDown(TPaintBox&, QKeyEvent& event) {
  const std::optional<TPoint> arrow = ArrowOf(event.key());
  bool handled = false;
  if (arrow) {
    handled = HandleArrow(*arrow, event.modifiers());
  } else if (event.key() == Qt::Key_Plus || event.key() == Qt::Key_Minus) {
    handled = ZoomByKey(event.key() == Qt::Key_Plus);
  } else if (event.matches(QKeySequence::Undo)) {
    handled = UndoCutRect();
  } else if (Rules().keepsUndone && IsRedo(event)) {
    handled = RedoCutRect();
  }
  event.setAccepted(handled);
}

bool TBmpCutRect::HandleArrow(const TPoint& arrow, Qt::KeyboardModifiers keys) {
  const int factor = keys.testFlag(Qt::ShiftModifier) ? 10 : 1;
  const int dx = arrow.X * factor, dy = arrow.Y * factor;
  if (keys.testFlag(Qt::AltModifier)) return PanBy(-kPanStep * dx, -kPanStep * dy);
  return keys.testFlag(Qt::ControlModifier) ? ResizeCutRect(dx, dy) : MoveCutRect(dx, dy);
}

bool TBmpCutRect::ZoomByKey(bool isIn) {
  const TRect box = ClientRect();
  bool handled = false;
  if (OrgBitmap() != nullptr) OnMouseWheel(isIn ? 1 : -1, {box.Right / 2, box.Bottom / 2}, handled);
  return handled;
}

TRect TBmpCutRect::ClientRect() const {
  return fPaintBox == nullptr ? TRect{} : TRect{0, 0, fPaintBox->width(), fPaintBox->height()};
}

// The smoothed picture may be outdated.
void TBmpCutRect::Repaint() {
  refineTimer_.stop();
  if (fPaintBox != nullptr) fPaintBox->update();
}

void TBmpCutRect::ShowCursor(CutCursor cursor) {
  if (fPaintBox == nullptr || fPaintBox->cursor().shape() == ShapeOf(cursor)) return;
  fPaintBox->setCursor(ShapeOf(cursor));
}

void TBmpCutRect::ShowSizeText(const std::string& text) {
  if (fSizeLabel != nullptr) fSizeLabel->setText(ToQt(text));
}

void TBmpCutRect::Paint(TPaintBox& box, QPainter& painter) {
  DrawPicture(painter);
  const bool showsCut = OrgBitmap() != nullptr && GetCutRectExists();
  if ((!DragIsActive() || Rules().isLive) && showsCut) DrawCutArea(painter);
  if (OutlineIsShown()) DrawCutRectXor(painter);
  TellReaders();
  if (FSavePaint) FSavePaint(box, painter);
}

/// Describes what was painted; not during a drag, whose steps would be too many.
void TBmpCutRect::TellReaders() {
  if (DragIsActive() || fPaintBox == nullptr) return;
  if (!GetCutRectExists()) return fPaintBox->SetContentText(ResourceText(rsNoCutForReaders));
  const TRect cut = CutPixels();
  const std::array values = {std::to_string(cut.Left), std::to_string(cut.Top),
                             std::to_string(cut.Right - cut.Left),
                             std::to_string(cut.Bottom - cut.Top)};
  fPaintBox->SetContentText(ToQt(FormatText(ResourceString(rsCutForReaders), values)));
}

void TBmpCutRect::DrawPicture(QPainter& painter) {
  pictureView_.Show(OrgBitmap(), PictureVersion(), WindowFor(painter));
  const bool hidesCut = DragIsActive() && !Rules().isLive;
  const bool isPlain = OrgBitmap() == nullptr || hidesCut || !GetCutRectExists();
  const TBitmap& shown = isPlain ? pictureView_.Plain() : pictureView_.Darkened(*Darkening());
  if (shown.Empty()) return;
  QImage image = ImageOfBitmap(shown);
  image.setDevicePixelRatio(painter.device()->devicePixelRatioF());
  painter.drawImage(QPointF(0, 0), image);
  const bool isBusy = DragIsActive() || refineTimer_.isActive();
  if (!isBusy && pictureView_.NeedsRefining()) refineTimer_.start(kPauseBeforeRefining);
}

// All values are in device pixels, so that a high-density screen shows all of them.
PictureView::Window TBmpCutRect::WindowFor(const QPainter& painter) const {
  const double scale = painter.device()->devicePixelRatioF();
  RDRect place = PaintRect();
  if (IsUnscaled()) {
    const TRect corner = place.ToRect();
    place = RDRect(corner.Left, corner.Top, corner.Left + BitmapRect().Right,
                   corner.Top + BitmapRect().Bottom);
  }
  place.Scale(scale);
  return {static_cast<int>(std::ceil(fPaintBox->width() * scale)),
          static_cast<int>(std::ceil(fPaintBox->height() * scale)), place.ToRect(),
          ColorOf(fPaintBox->palette().color(fPaintBox->backgroundRole()))};
}

void TBmpCutRect::RefineForAWhile() {
  if (DragIsActive() || fPaintBox == nullptr) return;
  QElapsedTimer clock;
  clock.start();
  while (pictureView_.RefineRows(kRowsAtATime)) {
    if (clock.elapsed() >= kRefiningSlice) return refineTimer_.start(0);
  }
  fPaintBox->update();
}

void TBmpCutRect::DrawCutArea(QPainter& painter) const {
  if (Rules().hasTwoTones) return DrawTwoTones(painter);
  const QColor color = QtColor(FrameColor());
  for (const RMarkRect& mark : MarkRects()) painter.fillRect(QtRect(mark.RectData), color);
  for (const TRect& strip : OutlineStrips(CutRect().ToRect(), FrameWidth(), ClientRect())) {
    painter.fillRect(QtRect(strip), color);
  }
}

void TBmpCutRect::DrawCutRectXor(QPainter& painter) const {
  painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
  for (const TRect& strip : OutlineStrips(CutRect().ToRect(), FrameWidth(), ClientRect())) {
    painter.fillRect(QtRect(strip), QColor(kOutlineColor));
  }
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

}  // namespace rasterkit
