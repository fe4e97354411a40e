#pragma once

/// Colors, palettes, transparency, the pixel engine, rotation, and files.
#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/engine/contrast_brightness.h>
#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/bitmaptools/engine/sharpen.h>
#include <rasterkit/bitmaptools/engine/shift_colors.h>
#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/load_via_wic.h>
#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/bitmaptools/files/world_file_name.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/pixels/palette_merge.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/bitmaptools/pixels/transparency.h>
#include <rasterkit/bitmaptools/rotation/orient.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
