#include <limits>

#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/codecs/messages/tiff_fields.h>
#include <rasterkit/pictures/reading/picture_fields.h>

namespace rasterkit::detail {
namespace {

constexpr int kMostInt = std::numeric_limits<int32_t>::max();
constexpr size_t kMostTextBytes = 1 << 20;
/// Boxes of metafiles stay far within what their differences can hold.
constexpr int64_t kMostUnits = int64_t{1} << 40;

int ReadNotNegative(FieldReader& fields) {
  return fields.I32In(0, kMostInt);
}

void WriteGps(FieldWriter& fields, const GpsPosition& position) {
  const auto& [latitude, longitude, altitude] = position;
  fields.F64(latitude);
  fields.F64(longitude);
  fields.Optional(altitude, [&](double meters) { fields.F64(meters); });
}

GpsPosition ReadGps(FieldReader& fields) {
  GpsPosition position;
  auto& [latitude, longitude, altitude] = position;
  latitude = fields.F64();
  longitude = fields.F64();
  altitude = fields.Optional([&] { return fields.F64(); });
  return position;
}

int ReadRotation(FieldReader& fields) {
  constexpr int kQuarter = 90, kMost = 270;
  const int rotation = fields.I32In(0, kMost);
  if (rotation % kQuarter != 0) ThrowBadMessage("a photograph is turned by no right angle");
  return rotation;
}

void WriteBox(FieldWriter& fields, const MetafileFacts::Box& box) {
  const auto& [left, top, right, bottom] = box;
  for (const int64_t side : {left, top, right, bottom}) fields.I64(side);
}

MetafileFacts::Box ReadBox(FieldReader& fields) {
  MetafileFacts::Box box;
  auto& [left, top, right, bottom] = box;
  for (int64_t* side : {&left, &top, &right, &bottom}) {
    *side = fields.I64();
    if (*side < -kMostUnits || *side > kMostUnits) ThrowBadMessage("a box is too large");
  }
  return box;
}

void WriteDrawing(FieldWriter& fields, const MetafileDrawing& drawing) {
  const auto& [dpi, size, background, isForFacts] = drawing;
  fields.F64(dpi);
  fields.I32(size.width);
  fields.I32(size.height);
  fields.I32(background);
  fields.Bool(isForFacts);
}

MetafileDrawing ReadDrawing(FieldReader& fields) {
  MetafileDrawing drawing;
  auto& [dpi, size, background, isForFacts] = drawing;
  dpi = fields.F64();
  size.width = ReadNotNegative(fields);
  size.height = ReadNotNegative(fields);
  background = fields.I32();
  isForFacts = fields.Bool();
  return drawing;
}

}  // namespace

void WriteReading(FieldWriter& fields, const PictureReading& reading) {
  // The worker itself reads in its own process.
  const auto& [threads, drawing, isolation, withPixels, keepGoing] = reading;
  fields.I32(threads);
  WriteDrawing(fields, drawing);
  fields.Bool(withPixels);
}

PictureReading ReadReading(FieldReader& fields) {
  PictureReading reading;
  auto& [threads, drawing, isolation, withPixels, keepGoing] = reading;
  threads = fields.I32();
  drawing = ReadDrawing(fields);
  withPixels = fields.Bool();
  return reading;
}

void WritePhotoFacts(FieldWriter& fields, const PhotoFacts& facts) {
  const auto& [orientation, rotation, gps, date, make, model, warnings] = facts;
  WriteOrientation(fields, orientation);
  fields.Optional(rotation, [&](int degrees) { fields.I32(degrees); });
  fields.Optional(gps, [&](const GpsPosition& position) { WriteGps(fields, position); });
  for (const std::string* text : {&date, &make, &model}) fields.ByteText(*text);
  WriteWarnings(fields, warnings);
}

PhotoFacts ReadPhotoFacts(FieldReader& fields) {
  PhotoFacts facts;
  auto& [orientation, rotation, gps, date, make, model, warnings] = facts;
  orientation = ReadOrientation(fields);
  rotation = fields.Optional([&] { return ReadRotation(fields); });
  gps = fields.Optional([&] { return ReadGps(fields); });
  for (std::string* text : {&date, &make, &model}) *text = fields.ByteText(kMostTextBytes);
  warnings = ReadWarnings(fields);
  return facts;
}

void WriteMetafileFacts(FieldWriter& fields, const MetafileFacts& facts) {
  const auto& [kind, bounds, boundsAreDrawn, frame, deviceWidth, deviceHeight, deviceWidthMm,
               deviceHeightMm, unitsPerInch, width, height, widthMm100, heightMm100, records,
               hasEmfPlus, isEmfPlusOnly, program, title, warnings] = facts;
  fields.Enum(kind);
  WriteBox(fields, bounds);
  fields.Bool(boundsAreDrawn);
  WriteBox(fields, frame);
  fields.I32(deviceWidth);
  fields.I32(deviceHeight);
  for (const double number : {deviceWidthMm, deviceHeightMm, unitsPerInch}) fields.F64(number);
  for (const int number : {width, height, widthMm100, heightMm100}) fields.I32(number);
  fields.U32(records);
  fields.Bool(hasEmfPlus);
  fields.Bool(isEmfPlusOnly);
  fields.ByteText(program);
  fields.ByteText(title);
  WriteWarnings(fields, warnings);
}

MetafileFacts ReadMetafileFacts(FieldReader& fields) {
  MetafileFacts facts;
  auto& [kind, bounds, boundsAreDrawn, frame, deviceWidth, deviceHeight, deviceWidthMm,
         deviceHeightMm, unitsPerInch, width, height, widthMm100, heightMm100, records, hasEmfPlus,
         isEmfPlusOnly, program, title, warnings] = facts;
  kind = fields.Enum(MetafileKind::emf);
  bounds = ReadBox(fields);
  boundsAreDrawn = fields.Bool();
  frame = ReadBox(fields);
  deviceWidth = ReadNotNegative(fields);
  deviceHeight = ReadNotNegative(fields);
  for (double* number : {&deviceWidthMm, &deviceHeightMm, &unitsPerInch}) *number = fields.F64();
  for (int* number : {&width, &height, &widthMm100, &heightMm100}) {
    *number = ReadNotNegative(fields);
  }
  records = fields.U32();
  hasEmfPlus = fields.Bool();
  isEmfPlusOnly = fields.Bool();
  program = fields.ByteText(kMostTextBytes);
  title = fields.ByteText(kMostTextBytes);
  warnings = ReadWarnings(fields);
  return facts;
}

void WritePicture(FieldWriter& fields, const LoadedFrame& picture) {
  const auto& [type, photo, metadata, warnings, bytes, tiff, grid, metafile, frames] =
      static_cast<const PictureFile&>(picture);
  fields.Enum(type);
  WritePhotoFacts(fields, photo);
  WriteMetadataKinds(fields, metadata);
  WriteWarnings(fields, warnings);
  fields.U64(bytes);
  fields.Optional(tiff, [&](const TiffFacts& facts) { WriteTiffFacts(fields, facts); });
  fields.Optional(grid, [&](GridType kind) { fields.Enum(kind); });
  fields.Optional(metafile, [&](const MetafileFacts& facts) { WriteMetafileFacts(fields, facts); });
  fields.I32(frames);
  WriteFrame(fields, picture.frame);
}

FrameHead ReadPictureHead(FieldReader& fields, PictureFile& picture) {
  auto& [type, photo, metadata, warnings, bytes, tiff, grid, metafile, frames] = picture;
  type = fields.Enum(kLastPictureType);
  photo = ReadPhotoFacts(fields);
  metadata = ReadMetadataKinds(fields);
  warnings = ReadWarnings(fields);
  bytes = fields.U64();
  tiff = fields.Optional([&] { return ReadTiffFacts(fields); });
  grid = fields.Optional([&] { return fields.Enum(NumberType::float64); });
  metafile = fields.Optional([&] { return ReadMetafileFacts(fields); });
  frames = ReadNotNegative(fields);
  FrameHead head = ReadFrameHead(fields);
  if (grid != GridTypeOf(head.format)) ThrowBadMessage("the pixels are not those of the grid");
  return head;
}

void WriteConvertedMetafile(FieldWriter& fields, const ConvertedMetafile& metafile) {
  const auto& [bytes, error, wasEnhanced, width, height, warnings] = metafile;
  WriteOutcome(fields, error);
  fields.Bool(wasEnhanced);
  fields.I32(width);
  fields.I32(height);
  WriteWarnings(fields, warnings);
}

void ReadConvertedMetafile(FieldReader& fields, ConvertedMetafile& metafile) {
  auto& [bytes, error, wasEnhanced, width, height, warnings] = metafile;
  error = ReadOutcome(fields);
  wasEnhanced = fields.Bool();
  width = ReadNotNegative(fields);
  height = ReadNotNegative(fields);
  warnings = ReadWarnings(fields);
}

}  // namespace rasterkit::detail
