#pragma once

#include <cstdint>

#include <rasterkit/dialogs/savedlgbitmap/save_options.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Lets the user set how a graphic is saved: its type (`showType`), resolution (`showResolution`)
/// and colors, or the quality of a JPEG file. `sizeA` and `sizeB` are its width and height on paper
/// in millimeters; with `showPixelSize` the window shows the resulting number of pixels and their
/// memory. `showHelp` adds a help button.
///
/// Returns true if the user pressed OK: `rec` has the settings then. Settings that were not shown
/// do not change, except that an invalid quality becomes 90 and an invalid color depth 24. Runs on
/// the thread that owns the application object; throws Error if no window can be shown.
RASTERKIT_EXPORT bool EditGraphicsParas(TrecSaveBitmap& rec, bool showType, bool showResolution,
                                        bool showPixelSize, bool showHelp, float sizeA,
                                        float sizeB);

/// The same window for a picture with a size in pixels, which the user may change proportionally,
/// and without resolution and size on paper. `width` and `height` are returned with the record.
bool EditGraphicsParasPixels(TrecSaveBitmap& rec, int& width, int& height);

}  // namespace rasterkit
