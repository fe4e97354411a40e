#include "tool/reports/geo_json.h"

namespace rasterkit::tool {

Json GeoJson(const std::vector<StatedPosition>& positions) {
  JsonList list;
  for (const StatedPosition& position : positions) {
    JsonObject entry;
    const Affine& a = position.affine;
    entry.Add("source", PositionSourceName(position.source));
    if (!position.file.empty()) entry.Add("file", position.file);
    entry.Add("affine", std::array{a.xPerColumn, a.yPerColumn, a.xPerRow, a.yPerRow, a.x, a.y});
    entry.Add("difference", position.difference);
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
