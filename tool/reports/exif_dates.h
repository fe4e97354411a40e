#pragma once

#include <string>

#include <rasterkit/metadata/exif_block.h>

namespace rasterkit::tool {

/// Converts an EXIF date, "2019:07:04 13:05:09", to ISO 8601; empty if it is invalid.
std::string IsoDate(std::string text);

/// The date when the photograph was taken, or else when its file was last changed, as ISO 8601;
/// empty if the block states none.
std::string DateOf(const rasterkit::ExifBlock& block);

}  // namespace rasterkit::tool
