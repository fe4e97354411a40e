#pragma once

/// Everything of librasterkit that is promised. The Qt side and the dialogs have headers of their
/// own: <rasterkit/qt.h> and <rasterkit/dialogs.h>.
#include <rasterkit/bitmaptools.h>
#include <rasterkit/graphics.h>
#include <rasterkit/jpegexif.h>
#include <rasterkit/pictures.h>
#include <rasterkit/raster.h>
#include <rasterkit/runtime.h>
#include <rasterkit/startup.h>
#include <rasterkit/strings.h>
#include <rasterkit/tifftobmp.h>
