#pragma once

#include <string>
#include <vector>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/picture.h>

namespace rasterkit::tool {

/// Palette of 256 entries at most that fits several pictures.
struct CommonPalette {
  HPALETTE palette;
  /// Every color of the pictures has an entry; else the entries are close to their colors.
  bool isExact = false;
};

/// Reads the pictures and chooses a palette for all of them together. Throws Failure.
CommonPalette ChooseCommonPalette(const std::vector<std::string>& files);

/// A picture of one pixel with this palette.
Picture PictureWith(const HPALETTE& palette);

}  // namespace rasterkit::tool
