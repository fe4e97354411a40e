#pragma once

#include <string>

#include "tool/pictures/exif/exif_block.h"

/// The small picture in an EXIF section, taken by the entries of its directory. The library's own
/// thumbnail routines look for a table behind a start marker instead, add a byte behind the end,
/// and cut into what lies before the directory.
namespace rasterkit::tool {

/// The bytes of the JPEG thumbnail; empty when there is none, or when it is no JPEG.
std::string ThumbnailBytes(const ExifBlock& block);

/// The section without the thumbnail, its directory and the link to it. No other byte changes or
/// moves, so that offsets inside maker notes stay true; the section becomes shorter when the
/// thumbnail lay at its end, and has zeros in its place otherwise. Unchanged when there is none.
/// Throws FormatError when the thumbnail's directory reaches beyond the section.
std::string WithoutThumbnail(const ExifBlock& block);

}  // namespace rasterkit::tool
