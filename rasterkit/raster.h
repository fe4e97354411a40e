#pragma once

/// Pixel formats and palettes.
#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>
