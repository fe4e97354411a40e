#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/jp2/jp2_file.h>
#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/raster/pixel_layout.h>

namespace rasterkit::detail {

/// A channel of the picture: where its numbers come from.
struct Jp2Channel {
  size_t component = 0;
  /// Column of the palette.
  std::optional<size_t> column;
  int bits = 8;
  bool isSigned = false;
};

/// How the components of a codestream become pixels.
struct Jp2Plan {
  int width = 0, height = 0;
  /// Pixels of the reference grid from one pixel to the next, and the first pixel in these steps.
  uint32_t stepX = 1, stepY = 1, firstX = 0, firstY = 0;
  PixelLayout layout;
  /// In the order of the bands: colors, further bands, alpha.
  std::vector<Jp2Channel> channels;
  /// The colors are luminance and chroma.
  bool isYcc = false;
  /// Set if the pixels are a raster.
  std::optional<TPixelFormat> format;
  std::vector<std::string> warnings;
};

/// Decides how pixels are made. Throws UnsupportedError for colors that are not read, FormatError
/// for boxes that contradict the codestream.
Jp2Plan PlanOf(const Jp2File& file);

}  // namespace rasterkit::detail
