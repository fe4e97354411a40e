#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/pictures/saving_options.h>
#include <rasterkit/pictures/steps.h>

/// Recipes: steps and a way of saving that fit any picture, as a value and as JSON.
namespace rasterkit {

/// Unit of a coordinate or a length. Those of the first three count from the top left corner of the
/// upright picture, after the steps before, to the right and down.
enum class LengthUnit {
  pixels,
  /// Of the picture's width and height.
  percent,
  /// On paper, by the picture's resolution.
  millimeters,
  /// By the picture's position: x runs east, y north.
  map
};

/// What happens where a rectangle lies partly outside the picture.
enum class Outside {
  /// RangeError.
  refuse,
  /// The part inside is taken; RangeError if there is none.
  clip
};

/// Keeps a rectangle. Its edges go to the nearest pixel border, halves to even, and keep at least
/// one pixel. In map units `top` is the greater y, and in a turned picture the bounding box of the
/// rectangle is kept.
struct RecipeCrop {
  LengthUnit unit = LengthUnit::pixels;
  double left = 0, top = 0, right = 0, bottom = 0;
  Outside outside = Outside::refuse;
  friend bool operator==(const RecipeCrop&, const RecipeCrop&) = default;
};

/// Another size, not in map units. 0 for one side: it follows from the other in the picture's
/// proportion. Millimeters need `dpi`, or the picture's resolution, and the result states that
/// resolution; in other units it states `dpi` if that is not 0, else what keeps the size on paper.
struct RecipeResize {
  LengthUnit unit = LengthUnit::pixels;
  double width = 0, height = 0;
  double dpi = 0;
  ResizeOptions options = {};
};

/// Lays over the picture of a slot.
struct RecipeCombine {
  std::string slot;
  CombineOptions options = {};
  /// How numbers of more than 8 bits of the slot's picture become gray or color.
  std::optional<NumberStretch> stretch = {};
};

/// Gives the picture the palette of a slot's picture: each pixel gets the nearest entry.
struct RecipePalette {
  std::string slot;
};

/// Takes over metadata from the picture of a slot; see MetadataCopy. An EditStep of a recipe has no
/// copy.
struct RecipeCopy {
  std::string slot;
  bool takesExif = true, takesXmp = true, takesIptc = true, takesComments = true;
  bool takesProfile = true, keepsOrientation = false;
};

using RecipeStep = std::variant<TurnStep, MirrorStep, RotateStep, NorthUpStep, RecipeCrop,
                                RecipeResize, ChangeStep, RecipeCombine, RecipePalette, PlaceStep,
                                EditStep, StretchStep, RecipeCopy>;

/// How the result is written; what is empty stays as in the source.
struct RecipeSave {
  std::optional<PictureType> type;
  /// Bits per pixel: 1, 4, 8, 15, 16, 24 or 32.
  std::optional<int> bits;
  std::optional<TiffCompression> compression;
  std::optional<int> quality;
  int chromaX = 0, chromaY = 0;
  std::optional<int> pngLevel;
  Lossless lossless = Lossless::exact;
  /// Behind transparent parts that depth or type cannot hold.
  TColor background = clWhite;
  enum class Keep { all, withoutGps, nothing } metadata = Keep::all;
};

struct Recipe {
  /// Program and version that made it: "rasterkit 0.2".
  std::string madeWith;
  std::vector<RecipeStep> steps;
  RecipeSave save;
  /// The picture is opened as it is stored, not upright: for steps that change metadata alone.
  bool isAsStored = false;
};

}  // namespace rasterkit
