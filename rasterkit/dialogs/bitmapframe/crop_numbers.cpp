#include <algorithm>

#include <rasterkit/dialogs/bitmapframe/crop_numbers.h>

namespace rasterkit {
namespace {

/// Limits a start and a length along one axis to [0, end).
void Limit(int& start, int& length, int end) {
  start = std::clamp(start, 0, std::max(end - 1, 0));
  length = std::clamp(length, std::min(1, end), end - start);
}

}  // namespace

CropNumbers CropNumbersOf(const BmpCutModel& model) {
  const TRect& bitmap = model.BitmapRect();
  if (!model.GetCutRectExists()) return {0, 0, bitmap.Right, bitmap.Bottom};
  const TRect cut = model.CutPixels();
  const int left = std::max(cut.Left, 0), top = std::max(cut.Top, 0);
  return InsideBitmap({left, top, cut.Right - left, cut.Bottom - top}, bitmap);
}

CropNumbers InsideBitmap(const CropNumbers& wanted, const TRect& bitmapRect) {
  CropNumbers numbers = wanted;
  Limit(numbers.left, numbers.width, bitmapRect.Right);
  Limit(numbers.top, numbers.height, bitmapRect.Bottom);
  return numbers;
}

}  // namespace rasterkit
