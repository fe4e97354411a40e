#pragma once

#include <vector>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// Small squares from all over a large picture, side by side in one bitmap, so that a change of all
/// of them costs a few milliseconds. Each has one more pixel around, which is not counted: what a
/// change that looks at neighbors makes of the counted pixels is what it makes of them in the
/// picture. A small picture is its own sample.
class PixelSample {
 public:
  explicit PixelSample(const TBitmap& picture);

  /// In the format of the picture, with its palette, alpha and transparent color.
  const TBitmap& Pixels() const { return pixels_; }
  /// The pixels of the sample that count.
  const std::vector<TRect>& Counted() const { return counted_; }
  bool IsWhole() const { return isWhole_; }

 private:
  void TakeSquares(const TBitmap& picture);

  TBitmap pixels_;
  std::vector<TRect> counted_;
  bool isWhole_ = false;
};

}  // namespace rasterkit
