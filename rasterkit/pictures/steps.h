#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <rasterkit/bands/color_change.h>
#include <rasterkit/bands/combine.h>
#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/metadata/edit/metadata_edit.h>
#include <rasterkit/placement/affine.h>
#include <rasterkit/raster/number_stretch.h>
#include <rasterkit/raster/pixel_format.h>

/// The steps of a picture: one plain struct each.
namespace rasterkit {

class Picture;

/// Quarter turns, counter-clockwise.
struct TurnStep {
  int quarters = 1;
};

struct MirrorStep {
  MirrorAxis axis = MirrorAxis::leftRight;
};

struct RotateOptions {
  Fill fill = {Fill::Kind::usual, clWhite};
  Filter filter = Filter::automatic;
};
/// Degrees counter-clockwise.
struct RotateStep {
  double degrees = 0;
  RotateOptions options;
};

/// Resamples into the map's frame: columns run east, rows south.
struct NorthUpStep {
  RotateOptions options;
};

/// Pixels, from the top left corner; must lie inside the picture.
struct CropStep {
  int left = 0, top = 0, width = 0, height = 0;
};

/// A rectangle in map units; see Picture::Crop.
struct MapRect {
  double minX = 0, minY = 0, maxX = 0, maxY = 0;
};

struct ResizeOptions {
  Filter filter = Filter::automatic;
};
struct ResizeStep {
  int width = 1, height = 1;
  ResizeOptions options;
};

struct ChangeStep {
  ColorChange change;
};

enum class CombineAlign { automatic, map, none };
struct CombineOptions {
  CombineMode mode = CombineMode::automatic;
  /// 0 to 100.
  int percent = 0;
  bool gray = false;
  /// `automatic`: by the map where both pictures are placed, else stretched over the whole.
  CombineAlign align = CombineAlign::automatic;
  /// For grids of other pixels than those of the picture below: `linear` interpolates numbers, the
  /// others take the nearest one.
  Filter filter = Filter::automatic;
};
struct CombineStep {
  std::shared_ptr<const Picture> other;
  CombineOptions options;
};

/// Another position on the map, for the picture after the steps so far; it replaces all that the
/// source states.
struct PlaceStep {
  Affine affine;
};

/// Pixels of the same size take the place of those of the picture: what a user saw in a window.
/// They are never changed.
struct PixelsStep {
  std::shared_ptr<const TBitmap> pixels;
};

struct EditStep {
  MetadataEdit edit;
};

/// How numbers of more than 8 bits become gray or color wherever they must: in later changes of
/// color, in pixels to look at, and in files that hold no more. Changes no pixel by itself.
struct StretchStep {
  NumberStretch stretch;
};

using Step = std::variant<TurnStep, MirrorStep, RotateStep, NorthUpStep, CropStep, ResizeStep,
                          ChangeStep, CombineStep, PixelsStep, PlaceStep, EditStep, StretchStep>;

}  // namespace rasterkit
