#pragma once

#include <string>
#include <vector>

#include <rasterkit/runtime/isolation.h>

namespace rasterkit::tool {

/// Lists what a picture file contains besides the pixels of its first picture, with the names used
/// in reports of losses: "exif", "gps", "worldfile", "pages" and so on. Decodes nothing; a file
/// that cannot be read has no extras.
std::vector<std::string> PictureExtras(const std::string& file, Isolation isolation);

/// Prints on stderr which items of `before` the file `output` does not contain.
void SayWhatIsLost(const std::vector<std::string>& before, const std::string& output,
                   Isolation isolation);

}  // namespace rasterkit::tool
