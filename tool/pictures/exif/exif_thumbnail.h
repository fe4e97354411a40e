#pragma once

#include <string>

#include "tool/pictures/exif/exif_section.h"

/// The thumbnail of an EXIF section, located by the entries of its directory. The library's own
/// thumbnail routines search for a table after a start marker instead, add a byte after the end,
/// and remove bytes before the directory.
namespace rasterkit::tool {

/// Bytes of the JPEG thumbnail; empty if there is none or if it is not a JPEG.
std::string ThumbnailBytes(const ExifBlock& block);

/// Returns the section without the thumbnail, its directory and the link to it. No other byte
/// changes or moves, so that offsets inside maker notes stay valid. The section becomes shorter if
/// the thumbnail is at its end; otherwise zeros replace it. Unchanged if there is no thumbnail.
/// Throws FormatError if the thumbnail's directory reaches beyond the section.
std::string WithoutThumbnail(const ExifBlock& block);

}  // namespace rasterkit::tool
