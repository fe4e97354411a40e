#pragma once

#include <rasterkit/pictures/reading/picture_size.h>

#include "tool/pictures/convert_picture.h"

namespace rasterkit::tool {

/// Changes the number of pixels of a picture. Its size on paper and its place on the map stay the
/// same. Pictures with a palette use the nearest pixel unless `smooth` turns them into true color;
/// others are averaged.
void ResizePicture(Subject& picture, const PictureSize& size, bool smooth);

}  // namespace rasterkit::tool
