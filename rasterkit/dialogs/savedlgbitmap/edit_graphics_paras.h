#pragma once

#include <cstdint>

#include <rasterkit/dialogs/savedlgbitmap/save_options.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Lets the user set how a graphic is to be saved: its type (`showType`), resolution
/// (`showResolution`) and colours, or the quality of a JPEG. `sizeA` and `sizeB` are its width and
/// height on paper in millimetres; with `showPixelSize` the window tells how many pixels and how
/// much memory that makes. `showHelp` gives it a button for help.
///
/// True when the user pressed OK: then `rec` is what was set; what was not shown stays as it was,
/// but a quality that is none becomes 90, and a colour depth that is none 24. Runs on the thread
/// that owns the application object; throws Error when no window can be shown.
RASTERKIT_EXPORT bool EditGraphicsParas(TrecSaveBitmap& rec, bool showType, bool showResolution,
                                        bool showPixelSize, bool showHelp, float sizeA,
                                        float sizeB);

/// The same window for a picture of a size in pixels, which the user may change in its proportion:
/// without resolution and size on paper. `width` and `height` are returned with the record.
bool EditGraphicsParasPixels(TrecSaveBitmap& rec, int& width, int& height);

}  // namespace rasterkit
