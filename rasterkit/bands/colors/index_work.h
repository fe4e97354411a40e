#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include <rasterkit/bands/colors/row_rule.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// What a change of indexed pixels must know of the pixels before the first row.
enum class IndexLook {
  nothing,
  /// The index of the top left pixel.
  first,
  /// The index of the bottom left pixel.
  corner,
  /// The indexes that occur, and that of the bottom left pixel.
  used,
};

/// Changes a small raster of the same kind as the picture.
using SmallChange = std::function<Raster(Raster)>;

/// The work of a change that makes equal pixels of equal indexes. What each index becomes is seen
/// on a small picture, whose top left pixel, bottom left pixel and set of indexes are those of the
/// picture as far as it looks at them.
std::unique_ptr<BandWork> MakeIndexWork(const Raster& like, Sides size, SmallChange change,
                                        IndexLook look);
/// The same for a change that puts a pixel of its own into the bottom left corner.
std::unique_ptr<BandWork> MakeIndexWorkWithCorner(const Raster& like, Sides size,
                                                  SmallChange change, IndexLook look);

/// The work of a conversion to fewer bits (see ConvertRaster).
std::unique_ptr<BandWork> MakeIndexConversion(const Raster& like, Sides size, TPixelFormat format);

}  // namespace rasterkit::detail
