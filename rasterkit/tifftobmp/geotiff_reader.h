#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// How the pixels of a raster that was read from a GeoTIFF are to be read: ordinary colors, one
/// float each, one unsigned word each, or the raw word of a signed or half-precision gray frame.
enum TWICFloatFormat { ffNoFloat, ffSingle, ffWord, ffSmallInt };

/// Reads the elevation or noise grid of a GeoTIFF file: a pf32bit bitmap of floats (ffSingle) or a
/// pf16bit one of words (ffWord, ffSmallInt), values as the file holds them; unsigned words of
/// which the least is white are turned round. False with an absent bitmap and ffNoFloat for a file
/// of colors. Geo tags are not looked at.
///
/// Throws FileError when the file cannot be opened, else an error with the codec's own text or
/// "Invalid image"; `Bitmap` is then absent.
RASTERKIT_EXPORT bool ReadGeoTiffIntoBitmap(const std::string& FileName,
                                            std::unique_ptr<TBitmap>& Bitmap,
                                            TWICFloatFormat& FloatFormat);

}  // namespace rasterkit
