#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/fields.h>

/// Rasters in messages between processes. The rows travel apart from the fields.
namespace rasterkit::detail {

/// Everything about a raster except its rows.
struct RasterHead {
  TPixelFormat format = pf32bit;
  int width = 0, height = 0;
  RasterProperties properties;

  /// Bytes of all rows with their padding.
  uint64_t RowsBytes() const {
    return StrideBytes(width, StoredBitsPerPixel(format)) * static_cast<uint64_t>(height);
  }
};

RASTERKIT_EXPORT void WriteRaster(FieldWriter& fields, const Raster& raster);
/// Reads what WriteRaster wrote. Throws FormatError for a format, a size, a palette or a color that
/// no raster has. Allocates no rows.
RASTERKIT_EXPORT RasterHead ReadRasterHead(FieldReader& fields);

/// All rows of a raster, one after another; empty for a raster without pixels.
RASTERKIT_EXPORT std::span<const uint8_t> RowsOf(const Raster& raster);
RASTERKIT_EXPORT std::span<uint8_t> RowsOf(Raster& raster);

/// Returns a raster whose rows, `rowsBytes` bytes, are to be filled; then its padding must be
/// cleared. Throws FormatError if the raster needs another number of bytes, LimitError if they
/// exceed the limits of the calling thread.
RASTERKIT_EXPORT Raster NewRaster(const RasterHead& head, uint64_t rowsBytes);

}  // namespace rasterkit::detail
