#include <utility>

#include <rasterkit/dialogs/bitmapframe/crop_bitmap.h>
#include <rasterkit/dialogs/bitmapframe/crop_bitmap_form.h>
#include <rasterkit/dialogs/bitmapframe/cut_bitmap.h>
#include <rasterkit/qt/host/modal_call.h>

namespace rasterkit {
namespace {

bool IsWhole(const TBitmap& bitmap, const TRect& rect) {
  return rect.Left == 0 && rect.Top == 0 && rect.Right == bitmap.Width() &&
         rect.Bottom == bitmap.Height();
}

}  // namespace

bool ChooseCropRect(TBitmap& bitmap, TRect& rect) {
  return ChooseCropRect(bitmap, rect, nullptr);
}

bool ChooseCropRect(TBitmap& bitmap, TRect& rect,
                    const std::function<bool(const TRect& part)>& isLossless) {
  const TModalCall call;
  TFormCropBitmap form(bitmap, rect);
  if (isLossless) form.SetIsLossless(isLossless);
  if (form.ShowModal() != mrOk) return false;
  rect = form.ChosenRect();
  return true;
}

bool CropBitmap(TBitmap& bitmap, TRect& rect) {
  TRect chosen = rect;
  if (!ChooseCropRect(bitmap, chosen)) return false;
  if (!IsWhole(bitmap, chosen)) bitmap = std::move(*CutBitmapTo(bitmap, chosen));
  rect = chosen;
  return true;
}

}  // namespace rasterkit
