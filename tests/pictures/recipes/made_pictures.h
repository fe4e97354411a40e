#pragma once

#include <memory>
#include <string>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/placement/side_files.h>

#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

/// Pictures for the tests of recipes.
namespace rasterkit::test {

inline Picture GradientPicture(int width, int height, TPixelFormat format = pf24bit) {
  return Picture::Of(std::make_unique<TBitmap>(GradientRaster(format, width, height)));
}

/// With a resolution that differs in the two directions.
inline Picture PaperPicture(int width, int height, Resolution dpi) {
  MetadataEdit edit;
  edit.resolution = dpi;
  return GradientPicture(width, height).Edit(edit);
}

/// With a position on the map.
inline Picture MapPicture(int width, int height, const Affine& affine) {
  return GradientPicture(width, height).Apply(PlaceStep{affine});
}

}  // namespace rasterkit::test
