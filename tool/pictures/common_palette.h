#pragma once

#include <string>
#include <vector>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::tool {

/// Palette of 256 entries at most that fits several pictures.
struct CommonPalette {
  HPALETTE palette;
  /// Every color of the pictures has an entry; else the entries are close to their colors.
  bool isExact = false;
};

/// Reads the pictures and chooses a palette for all of them together. Throws Failure.
CommonPalette ChooseCommonPalette(const std::vector<std::string>& files);

}  // namespace rasterkit::tool
