#pragma once

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The angle at which a scan lies.
struct Skew {
  /// False if nothing in the picture runs along straight lines, or they are turned by more than 15
  /// degrees: a blank page, a photograph.
  bool isFound = false;
  /// Degrees counter-clockwise by which the picture must be turned so that its lines run across and
  /// down, -15 to 15, in thousandths; 0 if no angle is found.
  double degrees = 0;
  /// How far the angle stands out from all others: 1 is not at all.
  double confidence = 0;
};

/// Finds the angle of the lines of a scanned plan or of its text, dark on light or light on dark.
///
/// Edges that run nearly across or down are projected along each direction; at the angle of the
/// lines they fall onto few rows. All sums are whole numbers, so the result is the same on every
/// processor. A page of A4 or A3 at 300 dpi gives the angle within 0.05 degrees. Throws
/// TimeLimitError and CanceledError.
RASTERKIT_EXPORT Skew FindSkew(const Raster& picture);

}  // namespace rasterkit
