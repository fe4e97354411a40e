#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/picture.h>

namespace rasterkit {

using ShownPixels = std::shared_ptr<TBitmap>;

/// How far pixels are, and what ends them.
struct PixelRun {
  std::stop_token cancel;
  /// 0 to 1; may be empty.
  std::function<void(double)> progress;
};

/// Bytes of the rows of the picture as pixels to look at.
uint64_t BytesToShow(const Picture& picture);
uint64_t BytesOf(const TBitmap& pixels);

/// The pixels of a picture with its steps. Throws Error, CanceledError.
ShownPixels PixelsToShow(const Picture& picture, const PixelRun& run);

/// A picture of shown pixels, with resolution and position of `facts`, whose pixels they are. They
/// are not copied: they must stay longer than the picture, and not change.
Picture PictureOver(TBitmap& pixels, const Picture& facts);

/// True if the pixels to look at are those of the source, so that steps on them show what steps on
/// the source give. Other pixels (16 bits, numbers, inks) are read from the file for each step.
bool AreSeenAsStored(const Picture& source);

}  // namespace rasterkit
