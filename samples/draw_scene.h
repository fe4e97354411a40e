#pragma once

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::samples {

/// A site photograph as a child would draw it: sky, sun, hills, a house, and a sign that says which
/// way is up. 24-bit; every pixel is computed, so that the picture is ours.
TBitmap DrawScene(int width, int height);

/// The same as an 8-bit picture with a ramp of 256 grays.
TBitmap DrawGrayScene(int width, int height);

}  // namespace rasterkit::samples
