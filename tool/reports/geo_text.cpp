#include "tool/reports/geo_text.h"

#include <fmt/core.h>

#include "tool/command/printable.h"

namespace rasterkit::tool {
namespace {

std::string SourceText(const GeoPosition& position) {
  if (!position.file.empty()) return "world file " + OnOneLine(position.file);
  return position.source == MetadataKindName(MetadataKind::geoTiff) ? "pixel scale and tie point"
                                                                    : "transformation matrix";
}

}  // namespace

std::string PositionText(const GeoPosition& position) {
  const auto [perColumnX, perColumnY, perRowX, perRowY, x, y] = position.affine;
  return fmt::format(
      "{}: pixel 0,0 has its center at {},{}; one column on adds {},{}, one row down adds {},{}",
      SourceText(position), x, y, perColumnX, perColumnY, perRowX, perRowY);
}

}  // namespace rasterkit::tool
