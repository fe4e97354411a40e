#include "tool/reports/geo_text.h"

#include <fmt/core.h>

#include "tool/command/printable.h"

namespace rasterkit::tool {
namespace {

std::string SourceText(const StatedPosition& position) {
  switch (position.source) {
    case PositionSource::worldFile:
      return "world file " + OnOneLine(position.file);
    case PositionSource::auxXml:
      return OnOneLine(position.file);
    case PositionSource::geoTiff:
      return "pixel scale and tie point";
    case PositionSource::geoTiffTransformation:
      return "transformation matrix";
    default:
      return "given position";
  }
}

}  // namespace

std::string PositionText(const StatedPosition& position) {
  const Affine& a = position.affine;
  std::string text = fmt::format(
      "{}: pixel 0,0 has its center at {},{}; one column on adds {},{}, one row down adds {},{}",
      SourceText(position), a.x, a.y, a.xPerColumn, a.yPerColumn, a.xPerRow, a.yPerRow);
  if (position.difference > 0) {
    text += fmt::format("; up to {:.3g} pixels off the first position", position.difference);
  }
  return text;
}

}  // namespace rasterkit::tool
