#pragma once

#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// A true-color raster as pf8bit or pf4bit, judged by colors alone (alpha is dropped). The
/// palette has all 256 or 16 entries.
///
/// With no more colors than entries the result is exact: a picture of grays gets the gray ramp at
/// 8 bits, any other its colors in the order of their first appearance, then black. With more
/// colors the palette is adaptive: chosen to keep the squared error small, every pixel gets the
/// nearest entry (the lowest among equals), and nothing is dithered.
Raster QuantizeRaster(const Raster& source, TPixelFormat format);

}  // namespace rasterkit
