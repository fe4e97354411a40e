#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Converts a true-color raster to pf8bit or pf4bit, without alpha. The palette has 256 or 16
/// entries.
///
/// If there are no more colors than entries, the result is exact: at 8 bits a gray picture gets the
/// gray ramp; any other gets its colors in the order of their first appearance, then black. Else
/// the palette is chosen to keep the squared error small, and every pixel gets the nearest entry
/// (the lowest index among equals). There is no dithering.
Raster QuantizeRaster(const Raster& source, TPixelFormat format);

}  // namespace rasterkit
