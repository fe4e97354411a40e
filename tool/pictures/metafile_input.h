#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/raster/raster.h>

#include "tool/pictures/picture_size.h"

namespace rasterkit::tool {

/// How a metafile is turned into pixels.
struct MetafileDrawing {
  /// Pixels per inch; 0 is 96, or follows from `size`.
  double dpi = 0;
  /// Both sides 0: the size follows from `dpi`.
  PictureSize size;
  /// Color of pixels that the records do not paint.
  TColor background = clWhite;
  /// The pixels are not shown to anyone: a large drawing may be scaled down.
  bool isForFacts = false;

  bool IsAsked() const { return dpi > 0 || size.width > 0 || size.height > 0; }
};

struct DrawnMetafile {
  MetafileFacts facts;
  /// 24-bit; its resolution is that of the drawing.
  Raster rows;
  std::vector<std::string> warnings;
};

/// Reads size, program and title from the records. Throws the library's errors if the bytes are not
/// a metafile.
MetafileFacts MetafileFactsOf(std::span<const uint8_t> bytes);

/// Draws the records. Throws the library's errors if the bytes cannot be drawn, if the drawing has
/// too many pixels, or, without a requested size, if it has more than 268 million: such a size is
/// more likely a damaged header than a real drawing.
DrawnMetafile DrawMetafile(std::span<const uint8_t> bytes, const MetafileDrawing& drawing);

}  // namespace rasterkit::tool
