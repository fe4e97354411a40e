#pragma once

#include <string>
#include <vector>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/pictures/picture.h>

#include "tool/command/batch.h"
#include "tool/command/json.h"

namespace rasterkit::tool {

/// The losses of a result on one line, those with the same reason together: "EXIF block, GPS
/// position (a BMP file holds no metadata); 2 of 3 pages (a BMP file holds one picture)". Empty if
/// nothing is lost.
std::string LossText(const JobResult& result);

/// The kinds of everything that is lost, each once.
std::vector<std::string> LostNames(const JobResult& result);

/// The list `losses` of JSON results: `kind`, `what`, `why`.
Json LossesJson(const std::vector<Loss>& losses);

/// What a picture states besides its pixels.
std::vector<LossKind> KindsOf(const Picture& picture);

/// Names the kinds of what a picture states and the list of losses does not contain: "exif", "gps",
/// "position" and so on.
std::vector<std::string> KeptNames(const Picture& picture, const std::vector<Loss>& losses);

}  // namespace rasterkit::tool
