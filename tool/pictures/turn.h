#pragma once

#include <memory>

#include <rasterkit/graphics/bitmap.h>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// Turns a picture of EXIF orientation 1 to 8 upright by moving whole pixels, in any pixel format.
void TurnUpright(std::unique_ptr<TBitmap>& bitmap, int orientation);

/// Turns by any angle. Multiples of 90 degrees move whole pixels, in any format. An angle within
/// half a degree of such a multiple is split into that multiple and a small turn, so that 89.6
/// degrees are not rounded to 90. Throws as RotateBitmapOrThrow does.
void Turn(std::unique_ptr<TBitmap>& bitmap, const PictureOptions& options);

/// The color of `--background RRGGBB`; -1 for "auto".
TColor BackgroundColor(const std::string& background);

}  // namespace rasterkit::tool
