#include <algorithm>
#include <tuple>
#include <utility>

#include <rasterkit/dialogs/bitmapframe/darked_bitmap.h>

namespace rasterkit {

void DarkedBitmap::Fill(int width, int height, const TRect& lit) {
  width_ = width;
  height_ = height;
  lit_ = {std::max(lit.Left, 0), std::max(lit.Top, 0), std::min(lit.Right, width),
          std::min(lit.Bottom, height)};
  mirroredLeftRight_ = mirroredTopBottom_ = false;
}

void DarkedBitmap::Swap(bool horizontal) {
  if (width_ < 2 || height_ < 2) return;
  bool& mirrored = horizontal ? mirroredLeftRight_ : mirroredTopBottom_;
  mirrored = !mirrored;
}

bool DarkedBitmap::IsLit(int x, int y) const {
  const bool moves = x < width_ - 1 && y < height_ - 1;
  if (moves && mirroredLeftRight_) x = width_ - 2 - x;
  if (moves && mirroredTopBottom_) y = height_ - 2 - y;
  return x >= lit_.Left && x < lit_.Right && IsLitRow(y);
}

// The last row and the last column stay in place when the rest is mirrored.
int DarkedBitmap::RowKind(int y) const {
  const bool moves = y < height_ - 1;
  const int mirroredY = moves && mirroredTopBottom_ ? height_ - 2 - y : y;
  return (moves ? 1 : 0) | (IsLitRow(mirroredY) ? 2 : 0) | (IsLitRow(y) ? 4 : 0);
}

TBitmap DarkedBitmap::Make(const TBitmap& picture) const {
  TBitmap result = std::move(*picture.Clone());
  result.SetPixelFormat(picture.StoredBits() == 32 ? pf32bit : pf24bit);
  const int step = result.StoredBits() / 8;
  for (int y = 0; y < result.Height(); ++y) {
    uint8_t* pixel = result.ScanLine(y);
    for (int x = 0; x < result.Width(); ++x, pixel += step) {
      if (IsLit(x, y)) continue;
      for (int channel = 0; channel < 3; ++channel) {
        pixel[channel] = static_cast<uint8_t>(pixel[channel] / 2);
      }
    }
  }
  return result;
}

bool operator==(const DarkedBitmap& a, const DarkedBitmap& b) {
  const auto values = [](const DarkedBitmap& d) {
    return std::make_tuple(d.width_, d.height_, d.lit_.Left, d.lit_.Top, d.lit_.Right,
                           d.lit_.Bottom, d.mirroredLeftRight_, d.mirroredTopBottom_);
  };
  return values(a) == values(b);
}

}  // namespace rasterkit
