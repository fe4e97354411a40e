#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/raster/raster.h>

#include "tool/pictures/picture_size.h"

namespace rasterkit::tool {

/// How a metafile becomes pixels.
struct MetafileDrawing {
  /// Pixels an inch; 0 is 96, or what `size` makes of the picture.
  double dpi = 0;
  /// Both sides 0: as large as `dpi` makes it.
  PictureSize size;
  /// What the records do not paint.
  TColor background = clWhite;
  /// Nobody looks at the pixels: a large drawing may be made smaller.
  bool isForFacts = false;

  bool IsAsked() const { return dpi > 0 || size.width > 0 || size.height > 0; }
};

struct DrawnMetafile {
  MetafileFacts facts;
  /// 24 bits; its resolution is what the drawing was made for.
  Raster rows;
  std::vector<std::string> warnings;
};

/// What the records say about themselves. Throws the library's errors for bytes that are none.
MetafileFacts MetafileFactsOf(std::span<const uint8_t> bytes);

/// Draws the records. Throws the library's errors: for bytes that cannot be drawn, for more pixels
/// than there may be, and for more than 268 million where no size was asked for, as a few damaged
/// bytes in a header say so sooner than anybody who draws.
DrawnMetafile DrawMetafile(std::span<const uint8_t> bytes, const MetafileDrawing& drawing);

}  // namespace rasterkit::tool
