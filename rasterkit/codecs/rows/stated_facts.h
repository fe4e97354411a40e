#pragma once

#include <cstdint>

#include <rasterkit/codecs/rows/picture_header.h>

namespace rasterkit::detail {

/// A resolution of pixels per meter. Within half a unit of a whole number of dots per inch it is
/// that number: files hold the rounded value.
Resolution FromDotsPerMeter(uint32_t x, uint32_t y);
/// The number that a file holds; 0 for an unknown resolution.
uint32_t DotsPerMeter(double dotsPerInch);

/// Sets the orientation and the resolution of a header from its metadata. `resolution` is that of
/// the file's own header; unknown if it states none.
void TakeStatedFacts(PictureHeader& header, const Resolution& resolution, bool isWhole);

}  // namespace rasterkit::detail
