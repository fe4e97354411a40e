#include <limits>
#include <string>

#include <fmt/core.h>

#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/codecs/messages/header_fields.h>
#include <rasterkit/codecs/messages/metadata_fields.h>
#include <rasterkit/codecs/messages/raster_fields.h>
#include <rasterkit/codecs/messages/tiff_fields.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

constexpr int kMostInt = std::numeric_limits<int32_t>::max();
/// Bands of hyperspectral pictures stay far below.
constexpr int kMostBands = 65535;
constexpr int kMostBits = 64;
constexpr size_t kMostTags = 65536, kMostNames = 1000, kMostNameBytes = size_t{1} << 16;

int ReadCount(FieldReader& fields) {
  return fields.I32In(0, kMostInt);
}

void WriteKind(FieldWriter& fields, const JpegForm& form) {
  const auto& [components, tables, progressive, arithmetic, restartInterval, adobeTransform] = form;
  fields.List(components, [&](const JpegForm::Component& component) {
    const auto& [id, h, v, table] = component;
    for (const int number : {id, h, v, table}) fields.I32(number);
  });
  for (const auto& table : tables) {
    fields.Optional(table, [&](const std::array<uint16_t, 64>& numbers) {
      for (const uint16_t number : numbers) fields.U16(number);
    });
  }
  fields.Bool(progressive);
  fields.Bool(arithmetic);
  fields.I32(restartInterval);
  fields.Optional(adobeTransform, [&](int transform) { fields.I32(transform); });
}

JpegForm ReadJpegForm(FieldReader& fields) {
  constexpr size_t kMostComponents = 255, kComponentBytes = 16;
  constexpr int kMostSampling = 15, kMostTable = 3, kMostByte = 255, kMostInterval = 65535;
  JpegForm form;
  auto& [components, tables, progressive, arithmetic, restartInterval, adobeTransform] = form;
  components = fields.List(kMostComponents, kComponentBytes, [&] {
    JpegForm::Component component;
    auto& [id, h, v, table] = component;
    id = fields.I32In(0, kMostByte);
    h = fields.I32In(0, kMostSampling);
    v = fields.I32In(0, kMostSampling);
    table = fields.I32In(0, kMostTable);
    return component;
  });
  for (auto& table : tables) {
    table = fields.Optional([&] {
      std::array<uint16_t, 64> numbers;
      for (uint16_t& number : numbers) number = fields.U16();
      return numbers;
    });
  }
  progressive = fields.Bool();
  arithmetic = fields.Bool();
  restartInterval = fields.I32In(0, kMostInterval);
  adobeTransform = fields.Optional([&]() -> int { return fields.I32In(0, kMostByte); });
  return form;
}

void WriteKind(FieldWriter& fields, const PngForm& form) {
  const auto& [bits, colorType, interlaced] = form;
  fields.I32(bits);
  fields.I32(colorType);
  fields.Bool(interlaced);
}

PngForm ReadPngForm(FieldReader& fields) {
  constexpr int kMostPngBits = 16, kMostColorType = 6;
  PngForm form;
  auto& [bits, colorType, interlaced] = form;
  bits = fields.I32In(1, kMostPngBits);
  colorType = fields.I32In(0, kMostColorType);
  interlaced = fields.Bool();
  return form;
}

void WriteKind(FieldWriter& fields, const TiffForm& form) {
  const auto& [compression, predictor, photometric, fillOrder, rowsPerStrip, tileWidth, tileHeight,
               isPlanar, isBigEndian, isBigTiff, jpegQuality, subsamplingX, subsamplingY] = form;
  for (const int number : {compression, predictor, photometric, fillOrder}) fields.I32(number);
  for (const uint32_t number : {rowsPerStrip, tileWidth, tileHeight}) fields.U32(number);
  for (const bool flag : {isPlanar, isBigEndian, isBigTiff}) fields.Bool(flag);
  for (const int number : {jpegQuality, subsamplingX, subsamplingY}) fields.I32(number);
}

TiffForm ReadTiffForm(FieldReader& fields) {
  constexpr int kMostTagNumber = 65535, kMostQuality = 100;
  TiffForm form;
  auto& [compression, predictor, photometric, fillOrder, rowsPerStrip, tileWidth, tileHeight,
         isPlanar, isBigEndian, isBigTiff, jpegQuality, subsamplingX, subsamplingY] = form;
  for (int* number : {&compression, &predictor, &photometric, &fillOrder}) {
    *number = fields.I32In(0, kMostTagNumber);
  }
  for (uint32_t* number : {&rowsPerStrip, &tileWidth, &tileHeight}) *number = fields.U32();
  for (bool* flag : {&isPlanar, &isBigEndian, &isBigTiff}) *flag = fields.Bool();
  jpegQuality = fields.I32In(0, kMostQuality);
  subsamplingX = fields.I32In(0, kMostTagNumber);
  subsamplingY = fields.I32In(0, kMostTagNumber);
  return form;
}

void WriteKind(FieldWriter&, std::monostate) {}

std::vector<std::string> ReadNames(FieldReader& fields) {
  return fields.List(kMostNames, 4, [&] { return fields.ByteText(kMostNameBytes); });
}

void WriteNames(FieldWriter& fields, const std::vector<std::string>& names) {
  fields.List(names, [&](const std::string& name) { fields.ByteText(name); });
}

}  // namespace

void WriteForm(FieldWriter& fields, const Form& form) {
  fields.U32(static_cast<uint32_t>(form.index()));
  std::visit([&](const auto& kind) { WriteKind(fields, kind); }, form);
}

Form ReadForm(FieldReader& fields) {
  constexpr uint32_t kLastForm = 3;
  switch (fields.U32In(0, kLastForm)) {
    case 0:
      return std::monostate();
    case 1:
      return ReadJpegForm(fields);
    case 2:
      return ReadPngForm(fields);
    default:
      return ReadTiffForm(fields);
  }
}

void WriteLayout(FieldWriter& fields, const PixelLayout& layout) {
  const auto& [type, bits, bands, model, alpha, extraBands, palette, profile] = layout;
  fields.Enum(type);
  fields.I32(bits);
  fields.I32(bands);
  fields.Enum(model);
  fields.Enum(alpha);
  fields.I32(extraBands);
  WritePalette(fields, palette);
  WriteProfile(fields, profile);
}

PixelLayout ReadLayout(FieldReader& fields) {
  PixelLayout layout;
  auto& [type, bits, bands, model, alpha, extraBands, palette, profile] = layout;
  type = fields.Enum(NumberType::float64);
  bits = fields.I32In(1, kMostBits);
  bands = fields.I32In(1, kMostBands);
  model = fields.Enum(ColorModel::other);
  alpha = fields.Enum(AlphaKind::transparentColor);
  extraBands = fields.I32In(0, bands);
  palette = ReadPalette(fields);
  profile = ReadProfile(fields);
  return layout;
}

void WriteHeader(FieldWriter& fields, const PictureHeader& header) {
  const auto& [width, height, layout, form, metadata, orientation, pages, frames, lostPages,
               directoryTags, smallerCopies, masks, positionTags, hiddenCopies, hiddenOthers,
               unreadPosition, trailerAt, isCutOff, warnings] = header;
  fields.I32(width);
  fields.I32(height);
  WriteLayout(fields, layout);
  WriteForm(fields, form);
  WriteMetadata(fields, metadata);
  WriteOrientation(fields, orientation);
  for (const int number : {pages, frames, smallerCopies, masks}) fields.I32(number);
  fields.ByteText(lostPages);
  fields.List(directoryTags, [&](uint16_t tag) { fields.U16(tag); });
  WriteTags(fields, positionTags);
  WriteNames(fields, hiddenCopies);
  WriteNames(fields, hiddenOthers);
  fields.ByteText(unreadPosition);
  fields.U64(trailerAt);
  fields.Bool(isCutOff);
  WriteWarnings(fields, warnings);
}

PictureHeader ReadHeader(FieldReader& fields) {
  PictureHeader header;
  auto& [width, height, layout, form, metadata, orientation, pages, frames, lostPages,
         directoryTags, smallerCopies, masks, positionTags, hiddenCopies, hiddenOthers,
         unreadPosition, trailerAt, isCutOff, warnings] = header;
  width = ReadCount(fields);
  height = ReadCount(fields);
  layout = ReadLayout(fields);
  form = ReadForm(fields);
  metadata = ReadMetadata(fields);
  orientation = ReadOrientation(fields);
  for (int* number : {&pages, &frames, &smallerCopies, &masks}) *number = ReadCount(fields);
  lostPages = fields.ByteText(kMostNameBytes);
  directoryTags = fields.List(kMostTags, 2, [&] { return fields.U16(); });
  positionTags = ReadTags(fields);
  hiddenCopies = ReadNames(fields);
  hiddenOthers = ReadNames(fields);
  unreadPosition = fields.ByteText(kMostNameBytes);
  trailerAt = fields.U64();
  isCutOff = fields.Bool();
  warnings = ReadWarnings(fields);
  return header;
}

void WritePixels(FieldWriter& fields, const Pixels& pixels) {
  const auto* raster = std::get_if<Raster>(&pixels);
  fields.Bool(raster != nullptr);
  if (raster != nullptr) return WriteRaster(fields, *raster);
  const auto& samples = std::get<Samples>(pixels);
  WriteLayout(fields, samples.Layout());
  fields.I32(samples.Width());
  fields.I32(samples.Height());
  fields.Bool(samples.Planes() > 1);
  fields.F64(samples.resolution.x);
  fields.F64(samples.resolution.y);
}

Pixels ReadPixels(FieldReader& fields, uint64_t bytes) {
  if (fields.Bool()) {
    const RasterHead head = ReadRasterHead(fields);
    return NewRaster(head, bytes);
  }
  const PixelLayout layout = ReadLayout(fields);
  const int width = fields.I32In(1, kMostInt), height = fields.I32In(1, kMostInt);
  const bool inPlanes = fields.Bool();
  const std::string what = fmt::format("picture of {} x {} pixels", width, height);
  RequirePictureSize(static_cast<uint64_t>(width), static_cast<uint64_t>(height), what);
  // Both factors have 31 bits, and a pixel at most 2^19 bytes: checked by division.
  const uint64_t pixels = static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
  const uint64_t pixelBytes = BytesOf(layout.type) * static_cast<uint64_t>(layout.bands);
  if (bytes % pixelBytes != 0 || bytes / pixelBytes != pixels) {
    ThrowBadMessage("the samples do not fit the size of the picture");
  }
  RequirePictureMemory(bytes, what);
  Samples samples(layout, width, height, inPlanes);
  samples.resolution.x = fields.F64();
  samples.resolution.y = fields.F64();
  return samples;
}

std::span<uint8_t> BytesOf(Pixels& pixels) {
  if (auto* raster = std::get_if<Raster>(&pixels)) return RowsOf(*raster);
  auto& samples = std::get<Samples>(pixels);
  const auto planes = static_cast<size_t>(samples.Planes());
  return {samples.Row(0), samples.Stride() * static_cast<size_t>(samples.Height()) * planes};
}

std::span<const uint8_t> BytesOf(const Pixels& pixels) {
  return BytesOf(const_cast<Pixels&>(pixels));
}

}  // namespace rasterkit::detail
