#include <algorithm>
#include <cmath>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>
#include <rasterkit/dialogs/bitmapframe/grab_handles.h>

namespace rasterkit {
namespace {

/// Returns the shift of an axis that centers the picture or makes it cover the client area.
double CenteringShift(double start, double end, double client) {
  const double size = end - start;
  if (size <= client) return (client - size) / 2 - start;
  if (start > 0) return -start;
  if (end < client) return client - end;
  return 0;
}

}  // namespace

void BmpCutModel::CalculateBmpPaintRect(bool fit) {
  if (fOrgBitmap == nullptr) return;
  isFitted_ = fit;
  lastBox_ = view_->ClientRect();
  RDRect paintRect(fBitmapRect);
  if (fit) {
    const double factor = paintRect.FitInRect(RDRect(view_->ClientRect()));
    ChangePlace(paintRect, factor);
  } else {
    ChangePlace(paintRect, 1);
    CenterInPaintBox();
  }
  if (!fDragIsActive) CalculateCutRect();
}

void BmpCutModel::CenterInPaintBox() {
  const RDRect client(view_->ClientRect());
  const double dx = CenteringShift(fPaintRect.Left, fPaintRect.Right, client.Right);
  const double dy = CenteringShift(fPaintRect.Top, fPaintRect.Bottom, client.Bottom);
  if (dx == 0 && dy == 0) return;
  RDRect paintRect = fPaintRect;
  paintRect.Move(dx, dy);
  ChangePlace(paintRect, fStretchFactor);
}

void BmpCutModel::ChangePlace(const RDRect& paintRect, double stretchFactor) {
  const RDRect dragged = ToBitmap(fCutRect);
  const RDRect start = ToBitmap(RDRect(fDragStartPosition.X, fDragStartPosition.Y,
                                       fDragStartPosition.X, fDragStartPosition.Y));
  fPaintRect = paintRect;
  fStretchFactor = stretchFactor;
  if (!fDragIsActive) return;
  if (rules_.isLive) return CalculateCutRect();
  fCutRect = ToBox(dragged);
  const TRect newStart = ToBox(start).ToRect();
  fDragStartPosition = {newStart.Left, newStart.Top};
}

RDRect BmpCutModel::ToBox(const RDRect& bitmapRect) const {
  RDRect rect = bitmapRect;
  rect.Move(-fBitmapRect.Left, -fBitmapRect.Top);
  rect.Scale(fStretchFactor);
  rect.Move(fPaintRect.Left, fPaintRect.Top);
  return rect;
}

RDRect BmpCutModel::ToBitmap(const RDRect& boxRect) const {
  RDRect rect = boxRect;
  rect.Move(-fPaintRect.Left, -fPaintRect.Top);
  // A box without area shows the picture at factor 0, which has no inverse.
  rect.Scale(fStretchFactor > 0 ? 1 / fStretchFactor : 0);
  return rect;
}

void BmpCutModel::CalculateCutRect() {
  fCutRect = ToBox(fBmpCutRect);
  CalcMarkRects();
}

void BmpCutModel::CalculateBmpCutRect() {
  if (!GetCutRectExists() || fStretchFactor <= 0) return;
  RDRect rect = fCutRect;
  rect.Move(-fPaintRect.Left, -fPaintRect.Top);
  fBmpCutRect = {rect.Left / fStretchFactor, rect.Top / fStretchFactor, rect.Right / fStretchFactor,
                 rect.Bottom / fStretchFactor};
  fBmpCutRect.Intersect(RDRect(fBitmapRect));
}

void BmpCutModel::CalcMarkRects() {
  fMarkRects.clear();
  if (!GetCutRectExists()) return;
  const TRect rect = fCutRect.ToRect();
  fMarkRects =
      rules_.grabSize > 0 ? MakeHandles(rect, fMarkWidth) : MakeMarkRects(rect, fMarkWidth);
}

EDragObjectType BmpCutModel::GetMouseTarget(int x, int y) const {
  if (!FCutRectEnabled || !HasPixels()) return doNone;
  if (rules_.grabSize > 0 && GetCutRectExists()) {
    const EDragObjectType grabbed = GrabAt(fCutRect.ToRect(), rules_.grabSize, x, y);
    if (grabbed != doNone) return grabbed;
  }
  if (!fPaintRect.Contains(x, y)) return doNone;
  if (!GetCutRectExists() || !fCutRect.Contains(x, y)) return doFrame;
  if (rules_.grabSize > 0) return doMove;
  const EDragObjectType mark = MarkAt(fMarkRects, x, y);
  return mark == doNone ? doMove : mark;
}

bool BmpCutModel::IsUnscaled() const {
  constexpr double kTolerance = 1e-6;
  return std::abs(fStretchFactor - 1) < kTolerance;
}

void BmpCutModel::OnResize() {
  fitsAnew_ = isReleased_;
  if (rules_.keepsZoom && !isFitted_ && HasPixels()) {
    KeepZoom();
  } else {
    CalculateBmpPaintRect(true);
  }
  view_->Repaint();
}

/// Keeps the point in the middle of the box where it is.
void BmpCutModel::KeepZoom() {
  const TRect box = view_->ClientRect();
  RDRect rect = fPaintRect;
  rect.Move((double{0} + box.Right - lastBox_.Right) / 2,
            (double{0} + box.Bottom - lastBox_.Bottom) / 2);
  lastBox_ = box;
  ChangePlace(rect, fStretchFactor);
  if (!fDragIsActive) CalculateCutRect();
}

std::optional<TPoint> BmpCutModel::PixelCornerAt(int x, int y) const {
  if (!HasPixels() || !fPaintRect.Contains(x, y)) return std::nullopt;
  const TRect corner = ToBitmap(RDRect(x, y, x, y)).ToRect();
  return TPoint{std::clamp(corner.Left, 0, fBitmapRect.Right),
                std::clamp(corner.Top, 0, fBitmapRect.Bottom)};
}

bool BmpCutModel::MayZoomTo(const RDRect& rect) const {
  constexpr double kSmallest = 1, kLargest = 1 << 27;
  const double now = std::max(fPaintRect.Width(), fPaintRect.Height());
  const double then = std::max(rect.Width(), rect.Height());
  return then > now ? then <= kLargest : then >= kSmallest;
}

void BmpCutModel::OnMouseWheel(int wheelDelta, const TPoint& mousePos, bool& handled) {
  handled = true;
  if (!HasPixels()) return;
  RDRect rect = fPaintRect;
  rect.Stretch(wheelDelta >= 0 ? fStepSize : -fStepSize, mousePos.X, mousePos.Y);
  if (!MayZoomTo(rect)) return;
  isFitted_ = false;
  const bool byHeight = fBitmapRect.Right <= fBitmapRect.Bottom;
  ChangePlace(rect,
              byHeight ? rect.Height() / fBitmapRect.Bottom : rect.Width() / fBitmapRect.Right);
  if (!fDragIsActive) CalculateCutRect();
  view_->Repaint();
}

void BmpCutModel::Pan(int x, int y) {
  const int dx = x - fDragStartPosition.X, dy = y - fDragStartPosition.Y;
  fDragStartPosition = {x, y};
  PanBy(dx, dy);
}

bool BmpCutModel::PanBy(int dx, int dy) {
  if (!HasPixels()) return false;
  isFitted_ = false;
  RDRect rect = fPaintRect;
  rect.Move(dx, dy);
  ChangePlace(rect, fStretchFactor);
  if (!fDragIsActive) CalculateCutRect();
  view_->Repaint();
  return true;
}

}  // namespace rasterkit
