#include <algorithm>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>

namespace rasterkit {
namespace {

CutCursor CursorOf(EDragObjectType target) {
  switch (target) {
    case doMove:
      return CutCursor::sizeAll;
    case doFrame:
      return CutCursor::cross;
    case doLeft:
    case doRight:
      return CutCursor::westEast;
    case doTop:
    case doBottom:
      return CutCursor::northSouth;
    case doLeftTop:
    case doRightBottom:
      return CutCursor::northWestSouthEast;
    case doRightTop:
    case doLeftBottom:
      return CutCursor::northEastSouthWest;
    default:
      return CutCursor::standard;
  }
}

struct Edges {
  bool left = false, top = false, right = false, bottom = false;
};

Edges EdgesOf(EDragObjectType handle) {
  return {handle == doLeft || handle == doLeftTop || handle == doLeftBottom,
          handle == doTop || handle == doLeftTop || handle == doRightTop,
          handle == doRight || handle == doRightTop || handle == doRightBottom,
          handle == doBottom || handle == doLeftBottom || handle == doRightBottom};
}

}  // namespace

void BmpCutModel::MouseDown(CutButton button, const CutButtons& held, int x, int y) {
  if (button == CutButton::left && FEntryMode != emGraphic) {
    if (OnBmpRefPointChanged) OnBmpRefPointChanged(*this, x, y);
    return;
  }
  if (!fDragIsActive && held.middle) {
    fDragStartPosition = {x, y};
    isPanning_ = true;
    view_->ShowCursor(CutCursor::pan);
    return;
  }
  const bool hasShapeKey = rules_.shapesByKeys && (held.shift || held.control);
  const bool isPlain = !held.middle && (!held.others || hasShapeKey);
  if (button == CutButton::left && held.left && isPlain) StartDrag(x, y);
}

void BmpCutModel::StartDrag(int x, int y) {
  // A release that another window took ends the drag of before.
  if (rules_.isLive && fDragIsActive) EndLiveDrag();
  fDraggedObject = GetMouseTarget(x, y);
  view_->ShowCursor(CursorOf(fDraggedObject));
  if (fDraggedObject == doNone) return;
  if (rules_.isLive) return StartLiveDrag(x, y);
  if (fDraggedObject == doFrame) fCutRect = RDRect(x, y, x, y);
  fDragStartPosition = {x, y};
  fDragIsActive = true;
  outlineIsShown_ = fDraggedObject != doFrame;
  view_->Repaint();
}

void BmpCutModel::MouseMove(const CutButtons& held, int x, int y) {
  if (fDragIsActive) {
    if (rules_.isLive) {
      DragLive(held, x, y);
    } else if (fDraggedObject != doNone) {
      DragTo(x, y);
    }
  } else if (held.middle) {
    // A button that was pressed during a drag has no starting point for panning.
    if (isPanning_) Pan(x, y);
  } else if (!held.left) {
    view_->ShowCursor(FEntryMode == emGraphic ? CursorOf(GetMouseTarget(x, y))
                                              : CutCursor::standard);
  }
}

// The following repaint removes the old outline and shows the new one.
void BmpCutModel::DragTo(int x, int y) {
  switch (fDraggedObject) {
    case doMove:
      DragMove(x, y);
      break;
    case doFrame:
      DragFrame(x, y);
      break;
    default:
      DragEdges(x, y);
  }
  outlineIsShown_ = true;
  view_->Repaint();
}

void BmpCutModel::DragMove(int x, int y) {
  fCutRect.MoveInRect(x - fDragStartPosition.X, y - fDragStartPosition.Y, fPaintRect);
  fDragStartPosition = {x, y};
}

// The edge on the other side of the starting point keeps its value: dragging back over that point
// leaves the far edge in place.
void BmpCutModel::DragFrame(int x, int y) {
  (x >= fDragStartPosition.X ? fCutRect.Right : fCutRect.Left) = x;
  (y >= fDragStartPosition.Y ? fCutRect.Bottom : fCutRect.Top) = y;
  fCutRect.Intersect(fPaintRect);
}

// The minimum size is reduced if the picture has no room for it.
void BmpCutModel::DragEdges(int x, int y) {
  const double least = 2.0 * fMarkWidth;
  const Edges edges = EdgesOf(fDraggedObject);
  if (edges.left) {
    fCutRect.Left = std::max(std::min<double>(x, fCutRect.Right - least), fPaintRect.Left);
  }
  if (edges.top) {
    fCutRect.Top = std::max(std::min<double>(y, fCutRect.Bottom - least), fPaintRect.Top);
  }
  if (edges.right) {
    fCutRect.Right = std::min(std::max<double>(x, fCutRect.Left + least), fPaintRect.Right);
  }
  if (edges.bottom) {
    fCutRect.Bottom = std::min(std::max<double>(y, fCutRect.Top + least), fPaintRect.Bottom);
  }
}

void BmpCutModel::MouseUp(CutButton button, int, int) {
  if (!fDragIsActive && button == CutButton::middle) {
    isPanning_ = false;
    view_->ShowCursor(CutCursor::standard);
  } else if (fDragIsActive && button == CutButton::left) {
    EndDrag();
  }
}

void BmpCutModel::EndDrag() {
  if (rules_.isLive) return EndLiveDrag();
  const CutHistory::Cut before = CurrentCut();
  const bool isClick = fDraggedObject == doFrame && fCutRect.Width() <= rules_.clickSize &&
                       fCutRect.Height() <= rules_.clickSize;
  if (isClick) {
    RemoveCut();
    fDraggedObject = doNone;
  } else {
    if (!fDarkedBmp) fDarkedBmp.emplace();
    CalculateBmpCutRect();
  }
  fDragIsActive = false;
  outlineIsShown_ = false;
  history_.Note(before, CurrentCut());
  if (fDraggedObject != doNone) KeepDraggedCut();
  view_->Repaint();
  Raise(OnStateChanged);
}

void BmpCutModel::KeepDraggedCut() {
  FillDarkedBitmap();
  CalcMarkRects();
  ShowCutBmpSize();
  Raise(OnInfoChanged);
  fDraggedObject = doNone;
  Raise(OnChanged);
}

void BmpCutModel::MouseLeave() {
  view_->ShowCursor(CutCursor::standard);
}

void BmpCutModel::StopDrag() {
  if (!fDragIsActive) return;
  fDragIsActive = false;
  outlineIsShown_ = false;
  fDraggedObject = doNone;
  if (rules_.isLive) StopLiveDrag();
  CalculateCutRect();
}

bool BmpCutModel::CancelDrag() {
  if (!fDragIsActive) return false;
  StopDrag();
  view_->Repaint();
  if (rules_.isLive) Raise(OnStateChanged);
  return true;
}

}  // namespace rasterkit
