#pragma once

#include <string>
#include <vector>

namespace rasterkit::tool {

/// Lists what a picture file contains besides the pixels of its first picture, with the names used
/// in reports of losses: "exif", "gps", "worldfile", "pages" and so on. Decodes nothing; a file
/// that cannot be read has no extras.
std::vector<std::string> PictureExtras(const std::string& file);

/// Prints on stderr which items of `before` the file `output` does not contain.
void SayWhatIsLost(const std::vector<std::string>& before, const std::string& output);

}  // namespace rasterkit::tool
