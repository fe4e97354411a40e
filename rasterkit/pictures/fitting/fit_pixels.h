#pragma once

#include <string>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/raster/number_stretch.h>
#include <rasterkit/raster/pixels.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// What a file format cannot hold of pixels is converted: numbers to colors, inks to sRGB, opacity
/// to the background. Each loss is added to `changes`. The profile of `metadata` goes where it no
/// longer fits.
struct PixelFit {
  PictureType type = PictureType::unknown;
  TColor background = clWhite;
  std::string noData;
  /// How numbers become colors.
  NumberStretch stretch;
  int threads = 1;
  /// The pixels only show the kind: what depends on them is not noted.
  bool isSample = false;
};

RASTERKIT_EXPORT Pixels FitPixels(Pixels pixels, const PixelFit& fit, Metadata& metadata,
                                  Changes& changes);

}  // namespace rasterkit::detail
