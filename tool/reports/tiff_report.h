#pragma once

#include <string>

#include <rasterkit/codecs/tiff/tiff_facts.h>

#include "tool/command/json.h"

namespace rasterkit::tool {

/// Describes the pixels of a TIFF file as stored: "8-bit RGB", "16-bit signed gray", "8-bit CMYK, 5
/// samples".
std::string PixelWords(const TiffFacts& facts);

/// Describes the file in one line: pixels, compression, layout, byte order, pages.
std::string TiffText(const TiffFacts& facts);

/// The object `tiff` of `info --json`.
Json TiffJson(const TiffFacts& facts);

}  // namespace rasterkit::tool
