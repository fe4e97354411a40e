#pragma once

#include <rasterkit/metafiles/records/metafile_bytes.h>
#include <rasterkit/raster/raster.h>

/// Bitmaps as old devices held them: kind, width, height, bytes of a row, planes, bits, and rows
/// from top to bottom without colours of their own.
namespace rasterkit::detail {

/// Reads header and rows: 1 bit a pixel (0 is black), 24 and 32 bits. Throws FormatError, and
/// UnsupportedError for others.
Raster ReadDdb(MetafileBytes& fields);

/// The same with the room that a brush's record has between header and rows.
Raster ReadDdbPattern(MetafileBytes& fields);

}  // namespace rasterkit::detail
