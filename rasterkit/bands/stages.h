#pragma once

#include <memory>
#include <optional>

#include <rasterkit/bands/color_change.h>
#include <rasterkit/bands/combine.h>
#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/bands/stage/sides.h>
#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/placement/affine.h>
#include <rasterkit/runtime/export.h>

/// The stages of a picture: what makes the rows of each step. `source` is the size of the picture
/// that a stage gets; `Make` throws RangeError for another one. Results are the same bytes for
/// every number of threads and every processor. Resolutions of the pixels follow: exchanged with
/// the sides, and scaled with them.
namespace rasterkit {

/// Quarter turns counter-clockwise. Samples move whole.
RASTERKIT_EXPORT std::unique_ptr<Stage> TurnStage(Sides source, int quarters);

RASTERKIT_EXPORT std::unique_ptr<Stage> MirrorStage(Sides source, MirrorAxis axis);

/// Throws RangeError if the rectangle is empty or not inside the picture.
RASTERKIT_EXPORT std::unique_ptr<Stage> CropStage(Sides source, int left, int top, int width,
                                                  int height);

/// A rotation as the kernels do it.
struct RotationFrame {
  /// Of the result.
  Sides sides;
  /// Whole quarter turns counter-clockwise, 0 to 3, which come first and move pixels only.
  int quarters = 0;
  /// What is left in degrees, 0 to 360; 0 if that is less than 0.01. Pixels are then taken as
  /// RotateBitmap takes them.
  float rest = 0;
  /// From pixel indexes of the result to those of the source.
  Affine toOld;
};

/// Degrees counter-clockwise, any finite number. Throws RangeError for others and for a result
/// beyond 2^31 - 1 pixels per side.
RASTERKIT_EXPORT RotationFrame FrameOfRotation(Sides source, double degrees);

/// Any angle; the frame is that of `FrameOfRotation`. Filter::automatic takes nearest pixels;
/// `linear` and `area` interpolate linearly and make a palette true color (gray ramps stay gray).
RASTERKIT_EXPORT std::unique_ptr<Stage> RotateStage(Sides source, double degrees,
                                                    const Resampling& how = {});

/// A result of `target` pixels whose pixel indexes `toOld` leads to those of the source; pixels as
/// in RotateStage.
RASTERKIT_EXPORT std::unique_ptr<Stage> AffineStage(Sides source, const Affine& toOld, Sides target,
                                                    const Resampling& how = {});

/// A picture that is taken into the map's frame.
struct NorthUpFrame {
  /// Of the result.
  Sides sides;
  /// From pixel indexes of the result to those of the source.
  Affine toOld;
  /// From pixel indexes of the result to the map: columns run east, rows south.
  Affine toMap;
};

/// The frame that holds all of a picture at a position. A pixel of the result is as wide and high
/// as one of the source is along its columns and rows; where the picture lies more on its side than
/// upright, these are exchanged. Throws RangeError for a position that cannot be inverted and for a
/// result beyond 2^31 - 1 pixels per side.
RASTERKIT_EXPORT NorthUpFrame FrameOfNorthUp(Sides source, const Affine& toMap);

/// Another number of pixels. Filter::automatic averages the covered area along a side that shrinks
/// and interpolates linearly along one that grows, and takes nearest pixels of a palette; 1-bit
/// grays that shrink become 8-bit gray. Samples are averaged in the stored model, associated alpha
/// as stored, colors with straight alpha weighted by it; `noData` is never mixed in.
RASTERKIT_EXPORT std::unique_ptr<Stage> ResizeStage(Sides source, Sides target,
                                                    Filter filter = Filter::automatic,
                                                    std::optional<double> noData = std::nullopt);

/// A picture that was made smaller by whole blocks while it was decoded. Each pixel stands for
/// `block` x `block` pixels, those at one edge for fewer.
struct ReducedPicture {
  /// As the pixels are.
  Sides sides;
  /// Before it was made smaller.
  Sides before;
  int block = 1;
  /// The edges where pixels stand for fewer.
  bool restIsLeft = false, restIsTop = false;
};

/// The same as ResizeStage by area for such a picture, to fewer pixels than it has: each pixel of
/// the result covers what it would cover of the picture before it was made smaller.
RASTERKIT_EXPORT std::unique_ptr<Stage> ResizeReducedStage(
    const ReducedPicture& source, Sides target, std::optional<double> noData = std::nullopt);

/// A change of color of a raster; samples must have been made visible, else UnsupportedError.
/// Throws RangeError for numbers that the change does not have. `Make` throws FormatError for
/// pictures that the change refuses: the exchange of opacity without transparency, palette entries
/// of a picture without a palette.
RASTERKIT_EXPORT std::unique_ptr<Stage> ChangeStage(Sides source, const ColorChange& change);

/// Lays a second picture over a raster, which becomes 24-bit. Transparent parts of the lower
/// picture are painted white first, but for a watermark, which keeps them.
RASTERKIT_EXPORT std::unique_ptr<Stage> CombineStage(Sides source, const Combination& combination);

/// Lays a grid over another one. The result has the frame of the lower grid, and its type, or the
/// narrowest type that holds the numbers of both exactly. A pixel shows the upper grid where its
/// center lies in it and the number there was measured. Numbers of the upper grid that mean "not
/// measured" in the lower one become a loss. Throws UnsupportedError for grids that cannot be
/// combined: other bands, no common type, linear filters for 64-bit numbers.
RASTERKIT_EXPORT std::unique_ptr<Stage> GridStage(Sides source, const GridCombination& combination);

}  // namespace rasterkit
