#include "tests/nothing_lost/stated_facts.h"

#include <filesystem>

#include "tests/tool/support/gdal_peer.h"

namespace rasterkit::test {

using nlohmann::json;

std::map<std::string, StatedTags> TagsInFolder(const std::string& folder) {
  std::map<std::string, StatedTags> tags;
  const std::string text = OutputOf("exiftool -q -q -j -G1 -n -a -struct " + Quoted(folder));
  const json files = json::parse(text, nullptr, false);
  if (!files.is_array()) return tags;
  for (const json& file : files) {
    const std::string name = file.at("SourceFile").get<std::string>();
    tags[std::filesystem::path(name).filename().string()] = file;
  }
  return tags;
}

json TagOf(const StatedTags& tags, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (tags.contains(name)) return tags.at(name);
  }
  return {};
}

bool HasGroup(const StatedTags& tags, const std::string& group) {
  for (const auto& [key, value] : tags.items()) {
    if (key.rfind(group, 0) == 0) return true;
  }
  return false;
}

}  // namespace rasterkit::test
