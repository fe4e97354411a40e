#pragma once

#include <string>
#include <vector>

namespace rasterkit::tool {

/// What a picture file holds beside the pixels of its first picture, by the names that reports of
/// what was not carried over use: "exif", "gps", "worldfile", "pages" and the like. Nothing is
/// decoded; a file that cannot be read has none.
std::vector<std::string> PictureExtras(const std::string& file);

/// Says on stderr what of `before` the file written to `output` has not.
void SayWhatIsLost(const std::vector<std::string>& before, const std::string& output);

}  // namespace rasterkit::tool
