#include <cstring>
#include <limits>
#include <string>

#include <rasterkit/codecs/messages/raster_fields.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kMostEntries = 256, kEntryBytes = 4;
constexpr size_t kMostProfileBytes = size_t{1} << 30;

void WriteEntry(FieldWriter& fields, const tagPALETTEENTRY& entry) {
  fields.U8(entry.peRed);
  fields.U8(entry.peGreen);
  fields.U8(entry.peBlue);
  fields.U8(entry.peFlags);
}

tagPALETTEENTRY ReadEntry(FieldReader& fields) {
  tagPALETTEENTRY entry;
  entry.peRed = fields.U8();
  entry.peGreen = fields.U8();
  entry.peBlue = fields.U8();
  entry.peFlags = fields.U8();
  return entry;
}

void WriteProperties(FieldWriter& fields, const RasterProperties& properties) {
  const auto& [palette, resolution, profile, alphaFormat, transparentColor] = properties;
  fields.List(palette.Entries(), [&](const auto& entry) { WriteEntry(fields, entry); });
  fields.F64(resolution.x);
  fields.F64(resolution.y);
  fields.Bool(profile != nullptr);
  if (profile != nullptr) fields.Bytes(*profile);
  fields.Enum(alphaFormat);
  fields.Optional(transparentColor, [&](TColor color) { fields.I32(color); });
}

ColorProfile ReadProfile(FieldReader& fields) {
  if (!fields.Bool()) return nullptr;
  const auto bytes = fields.Bytes(kMostProfileBytes);
  return std::make_shared<const std::vector<uint8_t>>(bytes.begin(), bytes.end());
}

RasterProperties ReadProperties(FieldReader& fields) {
  RasterProperties properties;
  auto& [palette, resolution, profile, alphaFormat, transparentColor] = properties;
  palette = HPALETTE(fields.List(kMostEntries, kEntryBytes, [&] { return ReadEntry(fields); }));
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

std::span<const uint8_t> RowsOf(const Raster& raster) {
  const size_t bytes = raster.Stride() * static_cast<size_t>(raster.Height());
  if (bytes == 0) return {};
  return {raster.Row(0), bytes};
}

Raster BuildRaster(const RasterHead& head, std::span<const uint8_t> rows) {
  const uint64_t bytes = head.RowsBytes();
  if (rows.size() != bytes) ThrowBadMessage("the rows do not fit the size of the raster");
  RequirePictureMemory(bytes, "picture of " + std::to_string(head.width) + " x " +
                                  std::to_string(head.height) + " pixels");
  Raster raster(head.format, head.width, head.height);
  raster.Properties() = head.properties;
  if (bytes == 0) return raster;
  std::memcpy(raster.Row(0), rows.data(), rows.size());
  raster.ClearPadding();
  return raster;
}

}  // namespace rasterkit::detail
