#pragma once

#include <variant>

#include <rasterkit/raster/raster.h>
#include <rasterkit/raster/samples.h>

namespace rasterkit {

/// Decoded pixels: colors of 1 to 32 bits as a Raster, everything else as Samples.
using Pixels = std::variant<Raster, Samples>;

inline int WidthOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) { return rows.Width(); }, pixels);
}
inline int HeightOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) { return rows.Height(); }, pixels);
}

/// The kind of pixels of a raster or of samples. A palette that is a ramp from black to white of
/// all indexes is gray, the reverse is gray with white as zero. The fourth byte of 32-bit pixels is
/// alpha, or an extra band if it has no meaning. 15-bit pixels have 5 bits per sample, 16-bit ones
/// 6 (those of green).
RASTERKIT_EXPORT PixelLayout LayoutOf(const Pixels& pixels);

/// Pixels of another size with the kind and the properties of `like`. Their content is undefined.
RASTERKIT_EXPORT Pixels NewPixels(const Pixels& like, int width, int height);

/// Bytes of the rows that NewPixels allocates; all ones if that is beyond 64 bits.
RASTERKIT_EXPORT uint64_t BytesOfPixels(const Pixels& like, int width, int height);

/// The same in `memory`, which holds BytesOfPixels bytes and outlives the result.
RASTERKIT_EXPORT Pixels PixelsInMemory(uint8_t* memory, const Pixels& like, int width, int height);

}  // namespace rasterkit
