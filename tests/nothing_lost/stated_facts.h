#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

/// What another program reads in picture files.
namespace rasterkit::test {

/// All tags of one file as exiftool names them: "IFD0:Orientation".
using StatedTags = nlohmann::json;

/// Reads every file of a folder with one run of exiftool; by file name.
std::map<std::string, StatedTags> TagsInFolder(const std::string& folder);

/// The first of the tags that is there; null if none is.
nlohmann::json TagOf(const StatedTags& tags, const std::vector<std::string>& names);

/// True if any tag belongs to the group: "GPS", "IPTC", "ICC_Profile".
bool HasGroup(const StatedTags& tags, const std::string& group);

}  // namespace rasterkit::test
