#pragma once

#include <atomic>

#include <rasterkit/dialogs/values/borrowed_pixels.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// A picture or a part of it that is shown with fewer pixels than it has.
struct Reduction {
  /// Size of the result.
  int width = 0, height = 0;
  /// Position of the whole picture in the result; parts of it may be outside.
  TRect place;
  /// The pixels under the centers, which takes little time; else the mean of the covered area.
  /// Pictures with a transparent color are always made so: their colors must not mix.
  bool isQuick = false;
};

/// Makes a bitmap of fewer pixels: 24-bit, or 32-bit with alpha where the picture has some
/// transparency. Where the result shows no picture it is black, or transparent. Works in bands of
/// rows: memory is that of the result. Empty (0 x 0) if it was canceled or the picture was taken
/// away. Throws LimitError beyond the memory budget.
TBitmap ReducePicture(const BorrowedPixels& picture, const Reduction& reduction,
                      const std::atomic<bool>& isCanceled);

/// The same for a picture that stays.
TBitmap ReducePicture(const TBitmap& picture, const Reduction& reduction);

}  // namespace rasterkit
