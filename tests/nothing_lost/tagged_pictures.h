#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/tool/support/run_tool.h"

/// Pictures with metadata of every kind, written by exiftool.
namespace rasterkit::test {

inline constexpr int kTaggedWidth = 120, kTaggedHeight = 80;

/// Writes o1.EXT to o8.EXT, one for each orientation, for .jpg, .png and .tif: 300 dots per inch,
/// camera, date, GPS, XMP, IPTC, ICC profile, sizes, subject area; JPEG files with a thumbnail and
/// a comment. Also o1.bmp, with its resolution alone. Needs exiftool.
void WriteTaggedPictures(const TempFolder& folder);

/// The name without folder of the file of one orientation, 1 to 8, and an extension.
std::string TaggedName(int orientation, std::string_view extension);

/// The names of those of one extension.
std::vector<std::string> TaggedPictures(const TempFolder& folder, const std::string& extension);

}  // namespace rasterkit::test
