#pragma once

#include <rasterkit/pictures/reading/metafile_drawing.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/runtime/isolation.h>

namespace rasterkit {

/// How a picture is opened.
struct OpenOptions {
  /// Page of a TIFF file, counted from 1. Files beside it (world files) state the position of the
  /// first page. Throws RangeError if there is no such page.
  int page = 1;
  /// Which position counts, and a world file of another name.
  PlacementReading position;
  /// The orientation that the file states becomes the first steps, so that the picture is upright.
  /// Without, pixels stay as stored and the file goes on to state its orientation.
  bool turnsUpright = true;
  /// How a metafile is drawn.
  MetafileDrawing drawing;
  /// Where the file is read.
  Isolation isolation = Isolation::none;
};

}  // namespace rasterkit
