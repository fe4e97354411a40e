#pragma once

/// EXIF data of photographs.
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/jpegexif/raw_orientation.h>
