#pragma once

#include <cstdint>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// Which part of a picture a box of another size shows at the picture's own size. All numbers are
/// pixels of the picture.
class PreviewPosition {
 public:
  /// Shows the middle of a picture that is larger than the box, else its beginning: along each axis
  /// the offset starts at half of the excess, halves to even.
  void InitBmpPos(int bitmapWidth, int bitmapHeight, int boxWidth, int boxHeight);

  /// A button was pressed at `mouse`.
  void Press(TPoint mouse) { mouse_ = mouse; }
  /// The mouse was dragged to `mouse`: the picture goes with it as far as there is any. True when
  /// the offset is another one.
  bool Drag(TPoint mouse);
  /// Shows what lies so many pixels further right and down; true when the offset is another one.
  bool Scroll(int64_t right, int64_t down);

  /// The pixel of the picture at the upper left corner of the box.
  TPoint Offset() const { return offset_; }
  TPoint MaxOffset() const { return maxOffset_; }
  /// What is seen of the picture.
  TRect Visible() const;

 private:
  TPoint bitmap_, box_;
  TPoint offset_, maxOffset_;
  TPoint mouse_;
};

}  // namespace rasterkit
