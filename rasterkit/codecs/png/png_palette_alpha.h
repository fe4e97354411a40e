#pragma once

#include <cstdint>
#include <span>

/// Palettes with several opacities, which a palette with one transparent color cannot hold.
namespace rasterkit::detail {

/// True if the palette has more than one transparent color, partly transparent ones, or opaque ones
/// of the transparent color. `colors` and `opacities` are the data of the chunks PLTE and tRNS.
bool NeedsAlphaChannel(std::span<const uint8_t> colors, std::span<const uint8_t> opacities);

/// The same for a whole file; false for files without palette.
bool NeedsAlphaChannel(std::span<const uint8_t> file);

}  // namespace rasterkit::detail
