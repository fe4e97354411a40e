#include <algorithm>
#include <cmath>
#include <utility>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

/// Returns both ends of the cut along one axis in whole pixels of a bitmap that ends at
/// `bitmapEnd`. A cut of less than a pixel becomes the pixel that contains its middle.
std::pair<int, int> WholePixels(int start, int end, double middle, int bitmapEnd) {
  if (end > start) return {start, end};
  // The very end of the bitmap belongs to the last pixel.
  const int pixel = static_cast<int>(std::floor(middle)) - (middle == bitmapEnd ? 1 : 0);
  return {pixel, pixel + 1};
}

double MiddleOf(double a, double b) {
  constexpr double kLimit = 1 << 30;
  return std::clamp(a + (b - a) / 2, -kLimit, kLimit);
}

}  // namespace

bool BmpCutModel::HasPixels() const {
  return fOrgBitmap != nullptr && !fOrgBitmap->Empty();
}

CutHistory::Cut BmpCutModel::CurrentCut() const {
  return GetCutRectExists() ? CutHistory::Cut(fBmpCutRect) : std::nullopt;
}

void BmpCutModel::Raise(const TCutNotifyEvent& event) {
  if (event) event(*this);
}

void BmpCutModel::SetOrgBitmap(TBitmap* bitmap) {
  StopDrag();
  ++pictureVersion_;
  if (bitmap != nullptr) {
    TakeBitmap(*bitmap);
  } else {
    ForgetBitmap();
  }
  view_->Repaint();
  Raise(OnStateChanged);
}

void BmpCutModel::ReleaseBitmap() {
  if (fOrgBitmap == nullptr) return;
  StopDrag();
  ++pictureVersion_;
  fOrgBitmap = nullptr;
  isReleased_ = true;
  view_->Repaint();
}

void BmpCutModel::TakeBitmap(TBitmap& bitmap) {
  const bool isFirst = fOrgBitmap == nullptr && !isReleased_;
  const bool sizeChanged =
      isFirst || bitmap.Width() != fBitmapRect.Right || bitmap.Height() != fBitmapRect.Bottom;
  isReleased_ = false;
  if (sizeChanged) history_.Forget();
  if (GetCutRectExists() && sizeChanged && fBitmapRect.Right > 0) {
    fBmpCutRect.Scale(static_cast<double>(bitmap.Width()) / fBitmapRect.Right);
  }
  fOrgBitmap = &bitmap;
  fBitmapRect = {0, 0, bitmap.Width(), bitmap.Height()};
  FillDarkedBitmap();
  ShowCutBmpSize();
  Raise(OnInfoChanged);
  if (sizeChanged || fitsAnew_) CalculateBmpPaintRect(true);
  fitsAnew_ = false;
}

void BmpCutModel::ForgetBitmap() {
  fOrgBitmap = nullptr;
  isReleased_ = fitsAnew_ = false;
  fDarkedBmp.reset();
  history_.Forget();
  fBitmapRect = {};
  fBmpCutRect = fPaintRect = fCutRect = {};
  fMarkRects.clear();
  Raise(OnInfoChanged);
}

void BmpCutModel::SwapBitmaps(bool horz) {
  if (fOrgBitmap == nullptr) return;
  StopDrag();
  ++pictureVersion_;
  history_.Forget();
  if (GetCutRectExists()) MirrorCut(horz);
  SwapBitmap(horz, fOrgBitmap);
  view_->Repaint();
  Raise(OnStateChanged);
}

void BmpCutModel::MirrorCut(bool horz) {
  fDarkedBmp->Swap(horz);
  const double width = fBmpCutRect.Width();
  fBmpCutRect.Left = fBitmapRect.Right - fBmpCutRect.Right;
  fBmpCutRect.Right = fBmpCutRect.Left + width;
  CalculateCutRect();
}

void BmpCutModel::SetBmpCutRect(const RDRect& rect) {
  if (fOrgBitmap == nullptr) return;
  StopDrag();
  const CutHistory::Cut before = CurrentCut();
  TakeCut(rect);
  history_.Note(before, CurrentCut());
  Raise(OnInfoChanged);
  view_->Repaint();
  Raise(OnStateChanged);
}

void BmpCutModel::TakeCut(const RDRect& rect) {
  fBmpCutRect = rect;
  if (!fDarkedBmp) fDarkedBmp.emplace();
  CalculateCutRect();
  FillDarkedBitmap();
}

void BmpCutModel::DelCutRect() {
  StopDrag();
  history_.Note(CurrentCut(), std::nullopt);
  RemoveCut();
  Raise(OnInfoChanged);
  Raise(OnStateChanged);
}

void BmpCutModel::RemoveCut() {
  fDarkedBmp.reset();
  fMarkRects.clear();
}

void BmpCutModel::FillDarkedBitmap() {
  if (fDarkedBmp) fDarkedBmp->Fill(fBitmapRect.Right, fBitmapRect.Bottom, CutPixels());
}

TRect BmpCutModel::CutPixels() const {
  const TRect rounded = fBmpCutRect.ToRect();
  const auto [left, right] =
      WholePixels(rounded.Left, rounded.Right, MiddleOf(fBmpCutRect.Left, fBmpCutRect.Right),
                  fBitmapRect.Right);
  const auto [top, bottom] =
      WholePixels(rounded.Top, rounded.Bottom, MiddleOf(fBmpCutRect.Top, fBmpCutRect.Bottom),
                  fBitmapRect.Bottom);
  return {left, top, right, bottom};
}

bool BmpCutModel::MoveCutRect(int dx, int dy) {
  if (!GetCutRectExists()) return false;
  RDRect rect(CutPixels());
  rect.MoveInRect(dx, dy, RDRect(fBitmapRect));
  ChangeByKey(rect);
  return true;
}

bool BmpCutModel::ResizeCutRect(int dx, int dy) {
  if (!GetCutRectExists()) return false;
  RDRect rect(CutPixels());
  rect.Intersect(RDRect(fBitmapRect));
  if (rules_.isLive) {
    ChangeByKey(
        RDRect(ResizedCut(rect.ToRect(), dx, dy, shape_, fBitmapRect.Right, fBitmapRect.Bottom)));
    return true;
  }
  rect.Right = std::max(std::min<double>(rect.Right + dx, fBitmapRect.Right), rect.Left + 1);
  rect.Bottom = std::max(std::min<double>(rect.Bottom + dy, fBitmapRect.Bottom), rect.Top + 1);
  ChangeByKey(rect);
  return true;
}

void BmpCutModel::ChangeByKey(const RDRect& rect) {
  StopDrag();
  const CutHistory::Cut before = CurrentCut();
  TakeCut(rect);
  history_.Note(before, CurrentCut());
  ShowCutBmpSize();
  Raise(OnInfoChanged);
  Raise(OnChanged);
  view_->Repaint();
  Raise(OnStateChanged);
}

bool BmpCutModel::UndoCutRect() {
  StopDrag();
  const std::optional<CutHistory::Cut> last = history_.Take();
  if (!last) return false;
  if (rules_.keepsUndone) history_.NoteUndone(CurrentCut());
  ShowCut(*last);
  return true;
}

bool BmpCutModel::RedoCutRect() {
  // Without anything to redo a drag goes on.
  if (!CanRedo()) return false;
  StopDrag();
  const std::optional<CutHistory::Cut> next = history_.TakeUndone(CurrentCut());
  if (!next) return false;
  ShowCut(*next);
  return true;
}

void BmpCutModel::ShowCut(const CutHistory::Cut& cut) {
  if (cut) {
    TakeCut(*cut);
  } else {
    RemoveCut();
  }
  ShowCutBmpSize();
  Raise(OnInfoChanged);
  Raise(OnChanged);
  view_->Repaint();
  Raise(OnStateChanged);
}

}  // namespace rasterkit
