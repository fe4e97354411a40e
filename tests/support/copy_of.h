#pragma once

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::test {

/// What a test changes while the original is to be compared with.
inline TBitmap CopyOf(const TBitmap& bitmap) {
  TBitmap copy;
  copy.Assign(&bitmap);
  return copy;
}

}  // namespace rasterkit::test
