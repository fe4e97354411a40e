#pragma once

#include <memory>
#include <string>

#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/bands/stage/stage.h>
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

/// True if the format holds pixels of the kind of `like` as they are, but for what FitKind changes.
RASTERKIT_EXPORT bool IsFit(const Pixels& like, const PixelFit& fit);

/// The stages that make pixels of the kind of `like` fit. They judge by the pixels that they get:
/// those that fit stay as they are. What is lost is added to `lost` when the stages have worked,
/// and not to what other stages lose.
RASTERKIT_EXPORT Stages FitStages(const Pixels& like, Sides sides, const PixelFit& fit,
                                  const std::shared_ptr<Changes>& lost);

/// Takes from the properties of pixels that fit, and from the metadata, what the format does not
/// hold. `stored` is the kind of the pixels before they were fitted.
RASTERKIT_EXPORT void FitKind(Pixels& like, const PixelLayout& stored, const PixelFit& fit,
                              Metadata& metadata, Changes& changes);

}  // namespace rasterkit::detail
