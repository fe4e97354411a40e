#pragma once

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/raster/pixel_layout.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// The kind of pixels that a decoder gives.
struct DecodedKind {
  PixelLayout layout;
  /// A raster, else samples.
  bool isRaster = true;
};

/// Foretells what the decoder of a format makes of pixels that are stored like this.
RASTERKIT_EXPORT DecodedKind DecodedKindOf(PictureType type, const PixelLayout& stored);

}  // namespace rasterkit::detail
