#pragma once

#include <functional>
#include <string>
#include <vector>

#include <rasterkit/graphics/metafile.h>
#include <rasterkit/pictures/reading/picture_size.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit {

/// Options for drawing a metafile.
struct MetafileDrawing {
  /// Dots per inch; 0 means 96, or the resolution that follows from `size`.
  double dpi = 0;
  /// 0 x 0: the size that follows from `dpi`.
  PictureSize size;
  /// Color of the pixels that the records do not paint.
  TColor background = clWhite;
  /// The pixels are discarded: a large drawing may be drawn smaller.
  bool isForFacts = false;

  bool IsAsked() const { return dpi > 0 || size.width > 0 || size.height > 0; }
};

struct DrawnMetafile {
  /// pf24bit, with the resolution that the drawing was made for.
  Raster rows;
  std::vector<std::string> warnings;
};

/// Size and resolution of a drawing.
struct DrawnSize {
  PictureSize pixels;
  Resolution resolution;
};

/// The size that DrawMetafile draws. Throws LimitError as it does.
DrawnSize DrawnSizeOf(const TMetafile& metafile, const MetafileDrawing& drawing);

/// Draws a loaded metafile. Throws UnsupportedError if it cannot be drawn, LimitError if the
/// picture memory budget is exceeded, if the file itself states more than 268 million pixels, or if
/// its size, or that at `dpi`, is not plausible: such a header is more likely damaged than meant.
/// `size` sets any size. `keepGoing`, if set, is called between records; see TMetafile::Draw.
RASTERKIT_EXPORT DrawnMetafile DrawMetafile(const TMetafile& metafile,
                                            const MetafileDrawing& drawing,
                                            const std::function<bool()>& keepGoing = {});

}  // namespace rasterkit
