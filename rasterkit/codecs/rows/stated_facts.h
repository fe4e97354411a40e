#pragma once

#include <cstdint>

#include <rasterkit/codecs/rows/picture_header.h>

namespace rasterkit::detail {

/// Dots per meter as a file holds them; 0 for an unknown resolution.
uint32_t DotsPerMeter(double dotsPerInch);

/// Sets the orientation and the resolution of a header from its metadata. `resolution` is that of
/// the file's own header; unknown if it states none. `format` begins a warning: "PNG".
void TakeStatedFacts(PictureHeader& header, const Resolution& resolution, const char* format);

}  // namespace rasterkit::detail
