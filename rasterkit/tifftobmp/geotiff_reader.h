#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// How to interpret the pixels of a raster from a GeoTIFF file: colors, one float each, one
/// unsigned word each, or the raw word of a signed or half-precision gray frame.
enum TWICFloatFormat { ffNoFloat, ffSingle, ffWord, ffSmallInt };

/// Reads the elevation or noise grid of a GeoTIFF file: a pf32bit bitmap of floats (ffSingle) or a
/// pf16bit bitmap of words (ffWord, ffSmallInt), with the values of the file. Unsigned words are
/// inverted if the lowest value is white. Returns false, with `Bitmap` null and ffNoFloat, for a
/// file of colors. Ignores geo tags.
///
/// Throws FileError if the file cannot be opened, else an error with the codec's own text or
/// "Invalid image"; `Bitmap` is then null.
RASTERKIT_EXPORT bool ReadGeoTiffIntoBitmap(const std::string& FileName,
                                            std::unique_ptr<TBitmap>& Bitmap,
                                            TWICFloatFormat& FloatFormat);

}  // namespace rasterkit
