#pragma once

#include <optional>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/metadata/resolution.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/placement/affine.h>
#include <rasterkit/placement/map_unit.h>

namespace rasterkit {

/// What the crop window knows about its picture.
struct CropFacts {
  /// In pixels.
  int width = 0, height = 0;
  /// Bits per pixel.
  int bits = 24;
  Resolution resolution;
  /// The position: pixel centers to the map.
  std::optional<Affine> affine;
  MapUnit mapUnit;
};

/// The facts of a picture whose pixels are shown. `mapUnit` is the name of its map's unit where its
/// coordinate system states none.
CropFacts CropFactsOf(const TBitmap& pixels, const Picture& picture,
                      const std::string& mapUnit = "");

/// A place in a unit: in map units x and y of the map, else the distances from the top left corner
/// of the picture.
struct UnitPlace {
  double x = 0, y = 0;
};

/// Whether numbers in this unit have a meaning: millimeters need a resolution, map units a position
/// that can be inverted.
bool KnowsUnit(const CropFacts& facts, LengthUnit unit);

/// The place of the corner between pixels that has `column` pixels to its left and `row` above.
UnitPlace PlaceOfCorner(const CropFacts& facts, LengthUnit unit, double column, double row);

/// Column and row of a place, not rounded. The picture must know the unit.
UnitPlace CornerOfPlace(const CropFacts& facts, LengthUnit unit, UnitPlace place);

/// Width and height of one pixel, measured along the sides of the picture, also where it is turned
/// on the map.
UnitPlace PixelSizeIn(const CropFacts& facts, LengthUnit unit);

/// Digits after the decimal mark that tell pixels apart: a step of the last one is at most a tenth
/// of a pixel.
int DecimalsFor(const CropFacts& facts, LengthUnit unit);

/// A rectangle of pixels in another unit, with DecimalsFor digits. In pixels where the unit cannot
/// tell it: in map units if the picture is turned by other angles than quarters.
RecipeCrop CropIn(const CropFacts& facts, LengthUnit unit, const TRect& rect);

/// "px", "%", "mm", or the unit of the map, which may be empty.
std::string UnitSymbol(const CropFacts& facts, LengthUnit unit);

/// A number with a fixed number of digits after the decimal mark of the texts.
std::string FixedText(double value, int decimals);

}  // namespace rasterkit
