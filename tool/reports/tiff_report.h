#pragma once

#include <string>

#include <rasterkit/codecs/tiff/tiff_facts.h>

#include <nlohmann/json.hpp>

namespace rasterkit::tool {

/// The pixels of a TIFF file in words, as the file has them: "8-bit RGB", "16-bit signed grey",
/// "8-bit CMYK, 5 samples".
std::string PixelWords(const TiffFacts& facts);

/// One line: pixels, compression, layout, byte order, pages.
std::string TiffText(const TiffFacts& facts);

/// The object `tiff` of `info --json`.
nlohmann::ordered_json TiffJson(const TiffFacts& facts);

}  // namespace rasterkit::tool
