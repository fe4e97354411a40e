#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include <rasterkit/bands/colors/color_reader.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// How many pixels have each gray value.
using GrayCounts = std::array<uint64_t, 256>;

/// Counts the gray values of the rows `first` to `last` - 1 as MakeMono sees them: transparent
/// parts are painted white. `key` is the transparent color of a picture whose raster states none.
RASTERKIT_EXPORT GrayCounts CountGrays(const Raster& raster, std::optional<TColor> key, int first,
                                       int last);

namespace detail {

/// The same for rows that `reader` can read.
GrayCounts CountGrays(const ColorReader& reader, const Raster& raster, int first, int last);

}  // namespace detail
}  // namespace rasterkit
