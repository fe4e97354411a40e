#pragma once

#include <functional>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::tool {

/// Changes the pixels of a 24-bit bitmap in place, each by its own colour. May look at the colour
/// of the bottom-left pixel.
using ColorChange = std::function<void(TBitmap& pixels)>;

/// Runs a change of colours on a picture of any kind, every pixel for itself.
///
/// A picture with a palette keeps its depth and its indexes: the entries go through the change as a
/// column of pixels, below them the colour of the bottom-left pixel. An 8-bit grey picture stays
/// one as long as the change knows greys only. All others become 24-bit. What was transparent stays
/// so: a transparent entry gets a colour that no other has, a transparent colour of true-colour
/// pictures becomes an alpha channel.
void ChangeColors(TBitmap& bitmap, const ColorChange& change);

}  // namespace rasterkit::tool
