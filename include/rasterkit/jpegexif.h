#pragma once

/// EXIF data of JPEG photographs.

#include <rasterkit/jpegexif/byte_order.h>
#include <rasterkit/jpegexif/date_time.h>
#include <rasterkit/jpegexif/exif_data.h>
#include <rasterkit/jpegexif/exif_tags.h>
#include <rasterkit/jpegexif/exif_text.h>
#include <rasterkit/jpegexif/gps_data.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/jpeg_sections.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/jpegexif/raw_orientation.h>
