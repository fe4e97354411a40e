#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/dialogs/bitmapframe/cut_history.h>
#include <rasterkit/dialogs/bitmapframe/cut_view.h>
#include <rasterkit/dialogs/bitmapframe/darked_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/mark_rects.h>
#include <rasterkit/dialogs/bitmapframe/rd_rect.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Whether the left button works the cut rectangle (emGraphic) or reports the point it hits.
enum TEntryMode { emGraphic, emLine, emCoord };

enum class CutButton { left, middle, right };

/// What is held down while the mouse does something.
struct CutButtons {
  bool left = false, middle = false;
  /// Another button, or a shift, control or alt key.
  bool others = false;
};

class BmpCutModel;
using TCutNotifyEvent = std::function<void(BmpCutModel& sender)>;
/// x and y in paint-box pixels.
using TNotifyBmpRefPointChanged = std::function<void(BmpCutModel& sender, int x, int y)>;

/// The crop tool without its widgets: which part of which bitmap is seen where, the cut rectangle,
/// and what mouse and keys make of them.
///
/// Two systems of coordinates, both with y downward: bitmap pixels and paint-box pixels. The
/// rectangle in one follows from that in the other:
///
///     fCutRect = (fBmpCutRect - top left of fBitmapRect) * fStretchFactor + top left of fPaintRect
///
/// A bitmap without pixels is handled as one that shows nothing; without a bitmap there is no cut.
/// The bitmap belongs to the caller and must outlive its use here; after changing its pixels call
/// `SetOrgBitmap` again or repaint. One thread.
class RASTERKIT_EXPORT BmpCutModel {
 public:
  explicit BmpCutModel(CutView& view) : view_(&view) {}
  BmpCutModel(const BmpCutModel&) = delete;
  BmpCutModel& operator=(const BmpCutModel&) = delete;

  /// Shows a bitmap (not owned; null for none), fitted when its size is not that of the one
  /// before. A cut stays, scaled by the ratio of the widths when the size changed.
  void SetOrgBitmap(TBitmap* bitmap);
  TBitmap* OrgBitmap() const { return fOrgBitmap; }
  /// The bitmap goes before the one that follows it is made: until `SetOrgBitmap` nothing is seen,
  /// which then finds place and cut as the bitmap before left them.
  void ReleaseBitmap();
  /// Mirrors the bitmap in place as `SwapBitmap` does. The cut rectangle is mirrored left to right
  /// in both cases.
  void SwapBitmaps(bool horz);

  /// Makes `rect` (bitmap pixels) the cut, as it is; nothing without a bitmap.
  void SetBmpCutRect(const RDRect& rect);
  const RDRect& BmpCutRect() const { return fBmpCutRect; }
  /// Ends the cut. Neither repaints nor writes the size label.
  void DelCutRect();
  bool GetCutRectExists() const { return fDarkedBmp.has_value(); }
  bool CutRectExists() const { return GetCutRectExists(); }
  /// A new bitmap of the same pixel format and palette with the pixels of the cut; null without a
  /// cut, 0 x 0 for a cut that lies outside the bitmap.
  std::unique_ptr<TBitmap> GetCutBitmap() const;
  std::unique_ptr<TBitmap> CutBitmap() const { return GetCutBitmap(); }
  /// The cut in whole bitmap pixels: corners rounded, and where nothing is left along an axis, the
  /// pixel that the cut lies in. Not clipped.
  TRect CutPixels() const;
  /// The picture with the outside of the cut darkened, whole; null without a cut.
  std::unique_ptr<TBitmap> DarkedBmp() const;
  const std::optional<DarkedBitmap>& Darkening() const { return fDarkedBmp; }

  /// Replaces `strings` by lines with width, height and bit depth of the bitmap and, with a cut,
  /// width, height and memory size of it; none without a bitmap.
  void GetInfo(std::vector<std::string>& strings) const;
  /// Writes the cut (when there is one and it is wanted) or the whole bitmap in the kind that the
  /// extension says; the size written goes to `BmpWidth` and `BmpHeight`, 0 without a bitmap.
  /// Before the whole bitmap goes over an existing file, that is renamed: its extension ".ext"
  /// becomes ".~ext", replacing an older backup. Throws what `SaveWindowsBitmap` throws; the old
  /// file and the backup are then as they were, and also where the extension has no kind and
  /// nothing is written.
  void SaveBitmap(const std::string& aBmpName, bool UseCutRect, int& BmpWidth, int& BmpHeight);

  /// Places the bitmap: fitted into the paint box, or at its own size and centred. Nothing without
  /// a bitmap.
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
  /// The paint box has a new size: the bitmap is fitted again.
  void OnResize();
  /// Zooms by a step of the wheel about a point in paint-box pixels: in for a delta of 0 and more,
  /// out below. A step that would leave less than a pixel of the picture, or more than 2^27, is
  /// not taken. `handled` becomes true.
  void OnMouseWheel(int wheelDelta, const TPoint& mousePos, bool& handled);

  /// Moves the picture by paint-box pixels, as far as one likes; false without a picture.
  bool PanBy(int dx, int dy);

  /// Moves the cut by whole bitmap pixels inside the bitmap; false without a cut.
  bool MoveCutRect(int dx, int dy);
  /// Moves the right and bottom edge of the cut by whole bitmap pixels, inside the bitmap and down
  /// to one pixel; false without a cut.
  bool ResizeCutRect(int dx, int dy);
  /// Takes back the last change of the cut, be it drawn, moved, set or removed; false when there is
  /// none left. A bitmap of another size forgets them all.
  bool UndoCutRect();
  bool CanUndo() const { return !history_.IsEmpty(); }
  /// The cut as it is now is where undoing ends.
  void ForgetCutHistory() { history_.Forget(); }
  /// Gives up a drag; the cut is what it was before. False when there is none.
  bool CancelDrag();

  void SetEntryMode(TEntryMode mode) { FEntryMode = mode; }
  TEntryMode EntryMode() const { return FEntryMode; }
  void SetCutRectEnabled(bool enabled) { FCutRectEnabled = enabled; }
  bool CutRectEnabled() const { return FCutRectEnabled; }

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
  /// Whether the outline of `CutRect` lies over the picture now: during a drag.
  bool OutlineIsShown() const { return outlineIsShown_; }
  /// Whether the picture is drawn pixel by pixel.
  bool IsUnscaled() const;
  /// Changes whenever the bitmap was handed over or changed through this class, so that what was
  /// made of its pixels can be told to be old.
  unsigned PictureVersion() const { return pictureVersion_; }

  /// Raised after a drag (or a key) changed the cut.
  TCutNotifyEvent OnChanged;
  TNotifyBmpRefPointChanged OnBmpRefPointChanged;
  /// Raised when the size information changes.
  TCutNotifyEvent OnInfoChanged;
  /// Raised after everything that changed the bitmap, the cut or whether there is one, for whoever
  /// shows more than the events above tell.
  TCutNotifyEvent OnStateChanged;

 private:
  bool HasPixels() const;
  CutHistory::Cut CurrentCut() const;
  RDRect ToBox(const RDRect& bitmapRect) const;
  RDRect ToBitmap(const RDRect& boxRect) const;
  /// Changes where the bitmap lies; what is being dragged stays on the pixels that it lies on.
  void ChangePlace(const RDRect& paintRect, double stretchFactor);
  void ForgetBitmap();
  void TakeBitmap(TBitmap& bitmap);
  void MirrorCut(bool horz);
  void TakeCut(const RDRect& rect);
  void RemoveCut();
  void ChangeByKey(const RDRect& rect);
  void Raise(const TCutNotifyEvent& event);

  void StopDrag();
  void StartDrag(int x, int y);
  void DragTo(int x, int y);
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

  CutView* view_;
  CutHistory history_;
  /// There was a bitmap, and there will be another one.
  bool isReleased_ = false;
  bool fitsAnew_ = false;
  bool outlineIsShown_ = false;
  bool isPanning_ = false;
  unsigned pictureVersion_ = 0;
};

}  // namespace rasterkit
