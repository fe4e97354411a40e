#pragma once

#include <span>
#include <vector>

#include <rasterkit/placement/affine.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The position that suits points best, and how far it is off at each of them.
struct PointFit {
  /// The place on the map minus the given one, in map units.
  struct Residual {
    double x = 0, y = 0;
    /// The length, in map units and in pixels.
    double distance = 0, pixels = 0;
  };

  Affine affine;
  /// In the order of the points.
  std::vector<Residual> residuals;
  /// Root mean square of the lengths, in map units and in pixels.
  double rms = 0, rmsPixels = 0;
  /// The picture lies on the map as in a mirror, which is most often a mistake in the points.
  bool isMirrored = false;
};

/// Finds the position of a picture from points that are known in both the picture and the map. Two
/// points give a similarity: one size of pixels, a turn and a shift, and never a mirrored picture,
/// since a map is seen from above and rows run down. Three points or more give the affine position
/// with the least sum of squared lengths of the residuals.
///
/// Computes in doubles around the centers of the points. Where points fit exactly, their places are
/// found up to 1e-12 of the extent of the map points plus two units in the last place of the
/// coordinates. A turn of less than 1e-12 counts as none.
///
/// Throws RangeError for fewer than two points, for numbers that are not finite or beyond 1e15, for
/// two points less than a thousandth of a pixel apart or of one place on the map, and if the points
/// lie (nearly) on one line, in the picture or on the map: the root mean square of their distances
/// from the line is less than a thousandth of that along the line.
RASTERKIT_EXPORT PointFit FitAffine(std::span<const ControlPoint> points);

/// The position of a picture that is not turned, from one point and the width and height of a pixel
/// in map units. Throws RangeError unless these are above 0 and all numbers are finite.
RASTERKIT_EXPORT Affine PlaceByPoint(const ControlPoint& point, MapPoint pixelSize);

}  // namespace rasterkit
