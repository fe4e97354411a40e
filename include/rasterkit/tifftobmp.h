#pragma once

/// The bitmap behind TIFF files.

#include <rasterkit/tifftobmp/wic_bitmap.h>
