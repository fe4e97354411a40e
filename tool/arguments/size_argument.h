#pragma once

#include <optional>
#include <string>

#include <rasterkit/pictures/reading/picture_size.h>

namespace rasterkit::tool {

/// A size as typed: pixels as in PictureSize, or percent of the picture ("50%", "50%x25%").
struct SizeArgument {
  PictureSize pixels;
  /// Percent of width and height; 0 for a size in pixels.
  double percentX = 0, percentY = 0;

  /// Returns both sides for a picture of width x height, each at least 1. Percent are rounded to
  /// the nearest pixel, halves to even.
  PictureSize For(int width, int height) const;
};

std::optional<SizeArgument> ParseSizeArgument(const std::string& text);

/// Check of options that are sizes in pixels. Says what is wrong, or returns an empty string.
std::string CheckSize(const std::string& text);

/// The same for sizes in pixels or percent.
std::string CheckSizeOrPercent(const std::string& text);

}  // namespace rasterkit::tool
