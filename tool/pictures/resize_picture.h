#pragma once

#include "tool/pictures/convert_picture.h"
#include "tool/pictures/picture_size.h"

namespace rasterkit::tool {

/// Gives a picture another number of pixels; it stays as large on paper, and where it is on the
/// map. Pictures with a palette take the nearest pixel unless `smooth` makes them true colour;
/// others are averaged.
void ResizePicture(Subject& picture, const PictureSize& size, bool smooth);

}  // namespace rasterkit::tool
