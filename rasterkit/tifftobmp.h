#pragma once

/// Pictures by content, TIFF files, GeoTIFF grids and tags.
#include <rasterkit/tifftobmp/geotiff_reader.h>
#include <rasterkit/tifftobmp/geotiff_writer.h>
#include <rasterkit/tifftobmp/wic_bitmap.h>
