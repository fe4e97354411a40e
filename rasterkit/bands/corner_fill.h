#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/raster/pixels.h>

/// What stands where a turned picture has no pixels.
namespace rasterkit::detail {

/// Prepares a raster for a fill: adds a palette entry, or an alpha channel, and marks the
/// transparent color. Returns the bytes of the fill's pixel in little-endian order; a packed pixel
/// is a number. With Fill::Kind::edge the pixel has no meaning.
uint32_t PrepareFill(Raster& raster, const Resampling& how);

/// The same for samples: adds an alpha band for `transparent` if there is none. Returns the bytes
/// of the fill's sample of each band.
std::vector<uint8_t> PrepareFill(Samples& samples, const Resampling& how);

/// The number of the first band in corners of gray samples that Fill::Kind::usual fills with its
/// color; empty if the number for missing data fills them.
std::string NumberOfCorners(const PixelLayout& layout, const Resampling& how);

}  // namespace rasterkit::detail
