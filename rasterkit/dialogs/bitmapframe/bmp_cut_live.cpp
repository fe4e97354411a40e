#include <algorithm>
#include <cmath>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>

// Drags that change the cut at each step.
namespace rasterkit {

void BmpCutModel::StartLiveDrag(int x, int y) {
  fDragStartPosition = {x, y};
  const RDRect pressed = ToBitmap(RDRect(x, y, x, y));
  pressedX_ = pressed.Left;
  pressedY_ = pressed.Top;
  cutBefore_ = CurrentCut();
  hasMoved_ = false;
  fDragIsActive = true;
}

void BmpCutModel::DragLive(const CutButtons& held, int x, int y) {
  const auto isFar = [&](int a, int b) { return std::abs(double{0} + a - b) > rules_.clickSize; };
  hasMoved_ |= isFar(x, fDragStartPosition.X) || isFar(y, fDragStartPosition.Y);
  if (!hasMoved_ || fStretchFactor <= 0) return;
  const RDRect mouse = ToBitmap(RDRect(x, y, x, y));
  CutDrag drag;
  drag.object = fDraggedObject;
  RDRect before = cutBefore_.value_or(RDRect(fBitmapRect));
  before.Intersect(RDRect(fBitmapRect));
  drag.start = before.ToRect();
  drag.fromX = pressedX_;
  drag.fromY = pressedY_;
  drag.toX = mouse.Left;
  drag.toY = mouse.Top;
  drag.shape = shape_;
  if (rules_.shapesByKeys) {
    drag.fromCenter = held.control;
    if (held.shift && drag.shape.ratio <= 0 && !before.IsEmpty()) {
      drag.shape.ratio = before.Width() / before.Height();
    }
  }
  drag.snap = rules_.snapDistance / fStretchFactor;
  drag.bitmapWidth = fBitmapRect.Right;
  drag.bitmapHeight = fBitmapRect.Bottom;
  TakeCut(RDRect(DraggedCut(drag)));
  ShowCutBmpSize();
  Raise(OnInfoChanged);
  view_->Repaint();
  Raise(OnStateChanged);
}

void BmpCutModel::StopLiveDrag() {
  if (cutBefore_) {
    TakeCut(*cutBefore_);
  } else {
    RemoveCut();
  }
}

// A click beside the cut removes it.
void BmpCutModel::EndLiveDrag() {
  if (!hasMoved_ && fDraggedObject == doFrame) RemoveCut();
  fDragIsActive = false;
  fDraggedObject = doNone;
  history_.Note(cutBefore_, CurrentCut());
  ShowCutBmpSize();
  Raise(OnInfoChanged);
  Raise(OnChanged);
  view_->Repaint();
  Raise(OnStateChanged);
}

}  // namespace rasterkit
