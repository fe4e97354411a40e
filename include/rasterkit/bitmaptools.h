#pragma once

/// Graphic files and types, colours, palettes and transparency, the parallel pixel engine.

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/orient.h>
#include <rasterkit/bitmaptools/engine/rotate.h>
#include <rasterkit/bitmaptools/engine/rotate_thread.h>
#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/palette_merge.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
