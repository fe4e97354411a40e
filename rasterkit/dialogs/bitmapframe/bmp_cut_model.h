#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/dialogs/bitmapframe/crop_rules.h>
#include <rasterkit/dialogs/bitmapframe/cut_history.h>
#include <rasterkit/dialogs/bitmapframe/cut_shape.h>
#include <rasterkit/dialogs/bitmapframe/cut_view.h>
#include <rasterkit/dialogs/bitmapframe/darked_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/mark_rects.h>
#include <rasterkit/dialogs/bitmapframe/rd_rect.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Whether the left button edits the cut rectangle (emGraphic) or reports the clicked point.
enum TEntryMode { emGraphic, emLine, emCoord };

enum class CutButton { left, middle, right };

/// The buttons and keys that are held during a mouse event.
struct CutButtons {
  bool left = false, middle = false;
  /// Another button, or Shift, Ctrl or Alt.
  bool others = false;
  /// Shift and Ctrl alone; `others` is set with them.
  bool shift = false, control = false;
};

class BmpCutModel;
using TCutNotifyEvent = std::function<void(BmpCutModel& sender)>;
/// x and y in paint-box pixels.
using TNotifyBmpRefPointChanged = std::function<void(BmpCutModel& sender, int x, int y)>;

/// The crop tool without its widgets: the visible part of a bitmap, the cut rectangle, and the
/// effect of mouse and keys on them.
///
/// There are two coordinate systems, both with y downward: bitmap pixels and paint-box pixels. The
/// rectangle in one follows from the rectangle in the other:
///
///     fCutRect = (fBmpCutRect - top left of fBitmapRect) * fStretchFactor + top left of fPaintRect
///
/// A bitmap without pixels shows nothing; without a bitmap there is no cut. The caller owns the
/// bitmap, which must outlive its use here; after changing its pixels call `SetOrgBitmap` again or
/// repaint. Not thread-safe.
class RASTERKIT_EXPORT BmpCutModel {
 public:
  explicit BmpCutModel(CutView& view, const CropRules& rules = kEntryCropRules)
      : rules_(rules), view_(&view) {}
  BmpCutModel(const BmpCutModel&) = delete;
  BmpCutModel& operator=(const BmpCutModel&) = delete;

  /// Shows a bitmap (not owned; null for none). It is fitted if its size differs from the previous
  /// one. A cut stays, scaled by the ratio of the widths if the size changed.
  void SetOrgBitmap(TBitmap* bitmap);
  TBitmap* OrgBitmap() const { return fOrgBitmap; }
  /// Releases the bitmap before its successor is made: nothing is shown until `SetOrgBitmap`, which
  /// then restores the position and the cut.
  void ReleaseBitmap();
  /// Mirrors the bitmap in place like `SwapBitmap`. The cut rectangle is mirrored left to right in
  /// both cases.
  void SwapBitmaps(bool horz);

  /// Sets the cut to `rect` (bitmap pixels) without clipping; ignored without a bitmap.
  void SetBmpCutRect(const RDRect& rect);
  const RDRect& BmpCutRect() const { return fBmpCutRect; }
  /// Removes the cut. Neither repaints nor updates the size label.
  void DelCutRect();
  bool GetCutRectExists() const { return fDarkedBmp.has_value(); }
  bool CutRectExists() const { return GetCutRectExists(); }
  /// Returns a new bitmap of the same pixel format and palette with the pixels of the cut; null
  /// without a cut, 0 x 0 if the cut is outside the bitmap.
  std::unique_ptr<TBitmap> GetCutBitmap() const;
  std::unique_ptr<TBitmap> CutBitmap() const { return GetCutBitmap(); }
  /// Returns the cut in whole bitmap pixels: corners rounded, and at least the pixel that contains
  /// the cut along each axis. Not clipped.
  TRect CutPixels() const;
  /// Returns the whole picture with the outside of the cut darkened; null without a cut.
  std::unique_ptr<TBitmap> DarkedBmp() const;
  const std::optional<DarkedBitmap>& Darkening() const { return fDarkedBmp; }

  /// Replaces `strings` by lines with the width, height and bit depth of the bitmap and, with a
  /// cut, its width, height and memory size; empty without a bitmap.
  void GetInfo(std::vector<std::string>& strings) const;
  /// Writes the cut (if there is one and `UseCutRect` is set) or the whole bitmap in the format of
  /// the extension. `BmpWidth` and `BmpHeight` receive the written size, 0 without a bitmap.
  ///
  /// Before the whole bitmap replaces an existing file, that file is renamed: its extension ".ext"
  /// becomes ".~ext", replacing an older backup. Throws the errors of `SaveWindowsBitmap`; the old
  /// file and the backup are unchanged then, and also if the extension has no format and nothing is
  /// written.
  void SaveBitmap(const std::string& aBmpName, bool UseCutRect, int& BmpWidth, int& BmpHeight);

  /// Positions the bitmap: fitted into the paint box, or centered at its own size. No-op without a
  /// bitmap.
  void CalculateBmpPaintRect(bool fit);
  void SetFitInOrgBmp(bool fit) { CalculateBmpPaintRect(fit); }
  void CalculateCutRect();
  void CalculateBmpCutRect();
  void CenterInPaintBox();
  void CalcMarkRects();
  void FillDarkedBitmap();
  void ShowCutBmpSize();
  EDragObjectType GetMouseTarget(int x, int y) const;

  void MouseDown(CutButton button, const CutButtons& held, int x, int y);
  void MouseMove(const CutButtons& held, int x, int y);
  void MouseUp(CutButton button, int x, int y);
  void MouseLeave();
  /// Fits the bitmap again after the paint box changed its size.
  void OnResize();
  /// Zooms by one step about a point in paint-box pixels: in if the delta is 0 or more, else out.
  /// Ignored if less than one pixel of the picture or more than 2^27 would remain. Sets `handled`
  /// to true.
  void OnMouseWheel(int wheelDelta, const TPoint& mousePos, bool& handled);

  /// Moves the picture by paint-box pixels without limits; false without a picture.
  bool PanBy(int dx, int dy);

  /// Moves the cut by whole bitmap pixels inside the bitmap; false without a cut.
  bool MoveCutRect(int dx, int dy);
  /// Moves the right and bottom edge of the cut by whole bitmap pixels, inside the bitmap and down
  /// to one pixel; false without a cut.
  bool ResizeCutRect(int dx, int dy);
  /// Undoes the last change of the cut (drawn, moved, set or removed); false if there is none. A
  /// bitmap of another size clears the history.
  bool UndoCutRect();
  bool CanUndo() const { return !history_.IsEmpty(); }
  /// Restores what was undone last; false if there is nothing, always with rules that keep nothing.
  bool RedoCutRect();
  bool CanRedo() const { return history_.HasUndone(); }
  /// Clears the history: the current cut cannot be undone.
  void ForgetCutHistory() { history_.Forget(); }
  /// Cancels a drag and restores the cut of before; false if there is no drag.
  bool CancelDrag();

  void SetEntryMode(TEntryMode mode) { FEntryMode = mode; }
  TEntryMode EntryMode() const { return FEntryMode; }
  void SetCutRectEnabled(bool enabled) { FCutRectEnabled = enabled; }
  bool CutRectEnabled() const { return FCutRectEnabled; }

  /// Sets the shape that drags and keys keep; the cut itself does not change. No effect with rules
  /// that are not live.
  void SetShape(const CutShape& shape) { shape_ = shape; }
  const CutShape& Shape() const { return shape_; }
  const CropRules& Rules() const { return rules_; }
  /// Returns the bitmap's corner between pixels that is nearest to a point in paint-box pixels.
  /// Nothing outside the bitmap.
  std::optional<TPoint> PixelCornerAt(int x, int y) const;

  const TRect& BitmapRect() const { return fBitmapRect; }
  const RDRect& PaintRect() const { return fPaintRect; }
  const RDRect& CutRect() const { return fCutRect; }
  double StretchFactor() const { return fStretchFactor; }
  const std::vector<RMarkRect>& MarkRects() const { return fMarkRects; }
  bool DragIsActive() const { return fDragIsActive; }
  EDragObjectType DraggedObject() const { return fDraggedObject; }
  TPoint DragStartPosition() const { return fDragStartPosition; }
  TColor FrameColor() const { return fFrameColor; }
  int FrameWidth() const { return fFrameWidth; }
  int MarkWidth() const { return fMarkWidth; }
  double StepSize() const { return fStepSize; }
  /// Whether the outline of `CutRect` is drawn over the picture: during a drag.
  bool OutlineIsShown() const { return outlineIsShown_; }
  /// Whether the picture is drawn at its own size.
  bool IsUnscaled() const;
  /// Changes whenever the bitmap is set or changed through this class, so that copies of its pixels
  /// can be recognized as outdated.
  unsigned PictureVersion() const { return pictureVersion_; }

  /// Called after a drag or a key changed the cut.
  TCutNotifyEvent OnChanged;
  TNotifyBmpRefPointChanged OnBmpRefPointChanged;
  /// Called if the size information changes.
  TCutNotifyEvent OnInfoChanged;
  /// Called after every change of the bitmap or the cut, for users that need more than the events
  /// above.
  TCutNotifyEvent OnStateChanged;

 private:
  bool HasPixels() const;
  CutHistory::Cut CurrentCut() const;
  RDRect ToBox(const RDRect& bitmapRect) const;
  RDRect ToBitmap(const RDRect& boxRect) const;
  /// Changes the position of the bitmap; a dragged object stays on its bitmap pixels.
  void ChangePlace(const RDRect& paintRect, double stretchFactor);
  void ForgetBitmap();
  void TakeBitmap(TBitmap& bitmap);
  void MirrorCut(bool horz);
  void TakeCut(const RDRect& rect);
  void RemoveCut();
  void ChangeByKey(const RDRect& rect);
  void Raise(const TCutNotifyEvent& event);

  void ShowCut(const CutHistory::Cut& cut);
  void StopDrag();
  void StartDrag(int x, int y);
  void DragTo(int x, int y);
  void StartLiveDrag(int x, int y);
  void DragLive(const CutButtons& held, int x, int y);
  void StopLiveDrag();
  void EndLiveDrag();
  void KeepZoom();
  void DragMove(int x, int y);
  void DragFrame(int x, int y);
  void DragEdges(int x, int y);
  void EndDrag();
  void KeepDraggedCut();
  void Pan(int x, int y);
  bool MayZoomTo(const RDRect& rect) const;
  void SaveWhole(const std::string& fileName) const;

  TColor fFrameColor = 255;
  int fFrameWidth = 2;
  int fMarkWidth = 10;
  double fStepSize = 0.05;
  std::vector<RMarkRect> fMarkRects;
  TBitmap* fOrgBitmap = nullptr;
  std::optional<DarkedBitmap> fDarkedBmp;
  TRect fBitmapRect;
  RDRect fBmpCutRect;
  RDRect fPaintRect;
  RDRect fCutRect;
  double fStretchFactor = 1;
  bool fDragIsActive = false;
  EDragObjectType fDraggedObject = doNone;
  TPoint fDragStartPosition;
  TEntryMode FEntryMode = emGraphic;
  bool FCutRectEnabled = true;

  CropRules rules_;
  CutShape shape_;
  /// The live drag: the cut of before, the place of the press in the bitmap, and whether the mouse
  /// went farther than a click.
  CutHistory::Cut cutBefore_;
  double pressedX_ = 0, pressedY_ = 0;
  bool hasMoved_ = false;
  /// The whole bitmap is fitted into the box.
  bool isFitted_ = true;
  TRect lastBox_;

  CutView* view_;
  CutHistory history_;
  /// The bitmap was released and another one will follow.
  bool isReleased_ = false;
  bool fitsAnew_ = false;
  bool outlineIsShown_ = false;
  bool isPanning_ = false;
  unsigned pictureVersion_ = 0;
};

}  // namespace rasterkit
