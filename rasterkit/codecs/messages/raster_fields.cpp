#include <limits>
#include <string>

#include <fmt/core.h>

#include <rasterkit/codecs/messages/metadata_fields.h>
#include <rasterkit/codecs/messages/raster_fields.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

void WriteProperties(FieldWriter& fields, const RasterProperties& properties) {
  const auto& [palette, resolution, profile, alphaFormat, transparentColor] = properties;
  WritePalette(fields, palette);
  fields.F64(resolution.x);
  fields.F64(resolution.y);
  WriteProfile(fields, profile);
  fields.Enum(alphaFormat);
  fields.Optional(transparentColor, [&](TColor color) { fields.I32(color); });
}

RasterProperties ReadProperties(FieldReader& fields) {
  RasterProperties properties;
  auto& [palette, resolution, profile, alphaFormat, transparentColor] = properties;
  palette = ReadPalette(fields);
  resolution.x = fields.F64();
  resolution.y = fields.F64();
  profile = ReadProfile(fields);
  alphaFormat = fields.Enum(afDefined);
  // A negative number would name a color of the host.
  transparentColor = fields.Optional([&]() -> TColor { return fields.I32In(0, clWhite); });
  return properties;
}

bool IsStored(TPixelFormat format) {
  return format != pfDevice && format != pfCustom;
}

}  // namespace

void WriteRaster(FieldWriter& fields, const Raster& raster) {
  fields.Enum(raster.Format());
  fields.I32(raster.Width());
  fields.I32(raster.Height());
  WriteProperties(fields, raster.Properties());
}

RasterHead ReadRasterHead(FieldReader& fields) {
  constexpr int kMostSide = std::numeric_limits<int32_t>::max();
  RasterHead head;
  head.format = fields.Enum(pf32bit);
  if (!IsStored(head.format)) ThrowBadMessage("a raster has no pixel format");
  head.width = fields.I32In(0, kMostSide);
  head.height = fields.I32In(0, kMostSide);
  head.properties = ReadProperties(fields);
  return head;
}

std::span<uint8_t> RowsOf(Raster& raster) {
  const size_t bytes = raster.Stride() * static_cast<size_t>(raster.Height());
  if (bytes == 0) return {};
  return {raster.Row(0), bytes};
}

std::span<const uint8_t> RowsOf(const Raster& raster) {
  return RowsOf(const_cast<Raster&>(raster));
}

Raster NewRaster(const RasterHead& head, uint64_t rowsBytes) {
  const uint64_t bytes = head.RowsBytes();
  if (rowsBytes != bytes) ThrowBadMessage("the rows do not fit the size of the raster");
  const std::string what = fmt::format("picture of {} x {} pixels", head.width, head.height);
  RequirePictureSize(static_cast<uint64_t>(head.width), static_cast<uint64_t>(head.height), what);
  RequirePictureMemory(bytes, what);
  Raster raster(head.format, head.width, head.height);
  raster.Properties() = head.properties;
  return raster;
}

}  // namespace rasterkit::detail
