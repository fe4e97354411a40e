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
  /// A picture that steps turn, mirror and then make smaller may be decoded smaller: a JPEG file at
  /// 1/2, 1/4 or 1/8 of its size, a TIFF file from one of its smaller copies, always at least twice
  /// the new size in both directions. Size, metadata and position are those of the exact way; the
  /// colors differ a little. Not with Isolation::process.
  bool shrinksOnLoad = false;
  /// Hidden pictures of a JPEG file and what follows its end are not looked for, so that no more
  /// than its front is read before its pixels. They are then not kept, and not reported.
  bool skipsHidden = false;
  /// Where the file is read.
  Isolation isolation = Isolation::none;
};

}  // namespace rasterkit
