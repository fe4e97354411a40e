#pragma once

#include <cstdint>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// The part of a picture that a box shows at the picture's own size. All numbers are picture
/// pixels.
class PreviewPosition {
 public:
  /// Shows the center of a picture that is larger than the box, else its beginning: along each axis
  /// the offset is half of the excess, halves to even.
  void InitBmpPos(int bitmapWidth, int bitmapHeight, int boxWidth, int boxHeight);

  /// A button was pressed at `mouse`.
  void Press(TPoint mouse) { mouse_ = mouse; }
  /// The mouse was dragged to `mouse`: the picture follows up to its edges. True if the offset
  /// changed.
  bool Drag(TPoint mouse);
  /// Moves the visible part right and down; true if the offset changed.
  bool Scroll(int64_t right, int64_t down);

  /// Returns the picture pixel at the upper left corner of the box.
  TPoint Offset() const { return offset_; }
  TPoint MaxOffset() const { return maxOffset_; }
  /// Returns the visible part of the picture.
  TRect Visible() const;

 private:
  TPoint bitmap_, box_;
  TPoint offset_, maxOffset_;
  TPoint mouse_;
};

}  // namespace rasterkit
