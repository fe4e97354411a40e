#include "tool/reports/geo_json.h"

namespace rasterkit::tool {

Json GeoJson(const std::vector<GeoPosition>& positions) {
  JsonList list;
  for (const GeoPosition& position : positions) {
    JsonObject entry;
    entry.Add("source", position.source);
    if (!position.file.empty()) entry.Add("file", position.file);
    entry.Add("affine", position.affine);
    list.Add(entry);
  }
  return list;
}

Json GpsJson(const std::optional<GpsPosition>& gps) {
  if (!gps) return {};
  return JsonObject()
      .Add("latitude", gps->latitude)
      .Add("longitude", gps->longitude)
      .Add("altitude", gps->altitude);
}

}  // namespace rasterkit::tool
