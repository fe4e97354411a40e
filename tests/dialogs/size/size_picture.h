#pragma once

#include <memory>

#include <rasterkit/metadata/edit/metadata_edit.h>
#include <rasterkit/pictures/picture.h>

#include "tests/support/test_pictures.h"

namespace rasterkit::test {

/// A picture in memory; a resolution of 0 is none.
inline Picture PictureOf(int width, int height, const Resolution& dpi,
                         TPixelFormat format = pf24bit) {
  Picture picture = Picture::Of(std::make_unique<TBitmap>(GradientBitmap(format, width, height)));
  if (dpi.IsKnown()) {
    MetadataEdit edit;
    edit.resolution = dpi;
    picture.Edit(edit);
  }
  return picture;
}

}  // namespace rasterkit::test
