#include "apps/rasterkit/geo_json.h"

namespace rasterkit::tool {

nlohmann::ordered_json GeoJson(const std::vector<GeoPosition>& positions) {
  auto list = nlohmann::ordered_json::array();
  for (const GeoPosition& position : positions) {
    nlohmann::ordered_json entry = {{"source", position.source}};
    if (!position.file.empty()) entry["file"] = position.file;
    entry["affine"] = position.affine;
    list.push_back(std::move(entry));
  }
  return list;
}

}  // namespace rasterkit::tool
