#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/bands/stage/stage.h>

/// Pictures of every kind that a stage may get, and comparisons.
namespace rasterkit::test {

struct PictureKind {
  std::string name;
  std::function<Pixels(int width, int height, std::mt19937& random)> make;
};

/// Rasters of every format, with and without transparency.
const std::vector<PictureKind>& RasterKinds();
/// Samples of every number type, with one to five bands, together and in planes.
const std::vector<PictureKind>& SampleKinds();
/// Both.
std::vector<PictureKind> EveryKind();

Pixels CloneOf(const Pixels& pixels);
Sides SidesOf(const Pixels& pixels);

/// The bytes of all bands of a pixel; a packed pixel's value.
std::vector<uint8_t> PixelAt(const Pixels& pixels, int x, int y);

/// Equal sizes, kinds and bytes of every pixel; rasters with their palettes and transparency, and
/// zero padding.
testing::AssertionResult SameRows(const Pixels& expected, const Pixels& actual);

/// Runs a stage on a copy.
Pixels MadeBy(const Stage& stage, const Pixels& source, int threads = 1);

/// Makes the picture with 1, 2 and 7 threads, expects the same bytes, and returns them. For some
/// ranges of rows, changes all rows of the source that the stage does not need, and expects that
/// the rows of the range are the same.
Pixels MadeInEveryWay(const Stage& stage, const Pixels& source);

/// The color that a pixel of a raster shows, and its opacity.
struct SeenPixel {
  TColor color = 0;
  int opacity = 255;
  friend bool operator==(const SeenPixel&, const SeenPixel&) = default;
};
SeenPixel Seen(const Pixels& raster, int x, int y);

}  // namespace rasterkit::test
