#pragma once

#include <memory>

#include <rasterkit/graphics/bitmap.h>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// Sets a picture of EXIF orientation 1 to 8 upright by moving whole pixels, in any pixel format.
void TurnUpright(std::unique_ptr<TBitmap>& bitmap, int orientation);

/// Turns by any angle. Multiples of a quarter turn move whole pixels, in any format and on any
/// edge; the rest within half a degree of one is turned from there, so that 89.6 degrees are
/// not 90.
void Turn(std::unique_ptr<TBitmap>& bitmap, const PictureOptions& options);

/// The colour that `--background RRGGBB` names; -1 for "auto".
TColor BackgroundColor(const std::string& background);

}  // namespace rasterkit::tool
