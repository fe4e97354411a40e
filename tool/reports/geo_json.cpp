#include "tool/reports/geo_json.h"

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

nlohmann::ordered_json GpsJson(const std::optional<GpsPosition>& gps) {
  if (!gps) return {};
  return {{"latitude", gps->latitude},
          {"longitude", gps->longitude},
          {"altitude",
           gps->altitude ? nlohmann::ordered_json(*gps->altitude) : nlohmann::ordered_json()}};
}

}  // namespace rasterkit::tool
