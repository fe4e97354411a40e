#pragma once

#include <rasterkit/metafiles/records/metafile_bytes.h>
#include <rasterkit/raster/raster.h>

/// Device-dependent bitmaps: type, width, height, bytes per row, planes, bits per pixel, and rows
/// from top to bottom, without a palette.
namespace rasterkit::detail {

/// Reads header and rows with 1 (0 is black), 24 or 32 bits per pixel. Throws FormatError if the
/// record is damaged, UnsupportedError for other bit depths.
Raster ReadDdb(MetafileBytes& fields);

/// Reads the bitmap of a pattern brush, which has a gap between header and rows.
Raster ReadDdbPattern(MetafileBytes& fields);

}  // namespace rasterkit::detail
