#pragma once

#include <string>
#include <vector>

#include <rasterkit/metadata/metadata.h>

#include "tool/command/batch.h"

namespace rasterkit::tool {

/// True if the options take away where a photograph was taken.
bool StripsPosition(const PictureOptions& options);

/// Warnings of what metadata still holds that could state a position: maker notes, and comments
/// with words for coordinates.
std::vector<std::string> WarningsOfMetadata(const Metadata& metadata);

/// Warnings of files beside the output that still state a position: GDAL's, XMP packets, backups.
std::vector<std::string> WarningsOfOtherFiles(const Job& job);

}  // namespace rasterkit::tool
