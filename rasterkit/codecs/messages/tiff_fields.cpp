#include <limits>

#include <rasterkit/codecs/messages/tiff_fields.h>

namespace rasterkit::detail {
namespace {

/// Numbers of tags have 16 bits.
constexpr int kMostTagNumber = 65535;
constexpr size_t kMostKinds = 1000, kKindBytes = 4;
constexpr size_t kMostNumbers = size_t{1} << 26, kNumberBytes = 8;
constexpr size_t kMostTextBytes = size_t{1} << 30;

void WriteNumbers(FieldWriter& fields, const std::vector<double>& numbers) {
  fields.List(numbers, [&](double number) { fields.F64(number); });
}

/// Groups of `group` numbers, at most `most` of them.
std::vector<double> ReadNumbers(FieldReader& fields, size_t group, size_t most) {
  auto numbers = fields.List(most, kNumberBytes, [&] { return fields.F64(); });
  if (numbers.size() % group != 0) ThrowBadMessage("a list of numbers has a wrong length");
  return numbers;
}

int ReadTagNumber(FieldReader& fields) {
  return fields.I32In(0, kMostTagNumber);
}

int ReadCount(FieldReader& fields) {
  return fields.I32In(0, std::numeric_limits<int32_t>::max());
}

}  // namespace

void WriteMetadataKinds(FieldWriter& fields, const std::vector<MetadataKind>& kinds) {
  fields.List(kinds, [&](MetadataKind kind) { fields.Enum(kind); });
}

std::vector<MetadataKind> ReadMetadataKinds(FieldReader& fields) {
  return fields.List(kMostKinds, kKindBytes, [&] { return fields.Enum(MetadataKind::noData); });
}

void WriteOrientation(FieldWriter& fields, const std::optional<int>& orientation) {
  fields.Optional(orientation, [&](int value) { fields.I32(value); });
}

std::optional<int> ReadOrientation(FieldReader& fields) {
  return fields.Optional([&]() -> int { return fields.I32In(1, 8); });
}

void WriteTiffFacts(FieldWriter& fields, const TiffFacts& facts) {
  const auto& [width, height, bitsPerSample, samples, sampleFormat, compression, photometric,
               isTiled, isPlanar, isBigTiff, isBigEndian, orientation, pages, secondaryPages,
               pixelScale, tiePoints, transformation, rasterType, hasCoordinateSystem, noData,
               metadata] = facts;
  fields.U32(width);
  fields.U32(height);
  for (const int number : {bitsPerSample, samples, sampleFormat, compression, photometric}) {
    fields.I32(number);
  }
  for (const bool flag : {isTiled, isPlanar, isBigTiff, isBigEndian}) fields.Bool(flag);
  WriteOrientation(fields, orientation);
  fields.I32(pages);
  fields.I32(secondaryPages);
  WriteNumbers(fields, pixelScale);
  WriteNumbers(fields, tiePoints);
  WriteNumbers(fields, transformation);
  fields.I32(rasterType);
  fields.Bool(hasCoordinateSystem);
  fields.ByteText(noData);
  WriteMetadataKinds(fields, metadata);
}

TiffFacts ReadTiffFacts(FieldReader& fields) {
  constexpr size_t kScale = 3, kTiePoint = 6, kMatrix = 16;
  TiffFacts facts;
  auto& [width, height, bitsPerSample, samples, sampleFormat, compression, photometric, isTiled,
         isPlanar, isBigTiff, isBigEndian, orientation, pages, secondaryPages, pixelScale,
         tiePoints, transformation, rasterType, hasCoordinateSystem, noData, metadata] = facts;
  width = fields.U32();
  height = fields.U32();
  for (int* number : {&bitsPerSample, &samples, &sampleFormat, &compression, &photometric}) {
    *number = ReadTagNumber(fields);
  }
  for (bool* flag : {&isTiled, &isPlanar, &isBigTiff, &isBigEndian}) *flag = fields.Bool();
  orientation = ReadOrientation(fields);
  pages = ReadCount(fields);
  secondaryPages = ReadCount(fields);
  if (secondaryPages > pages) ThrowBadMessage("a file has more smaller copies than pages");
  pixelScale = ReadNumbers(fields, kScale, kScale);
  tiePoints = ReadNumbers(fields, kTiePoint, kMostNumbers);
  transformation = ReadNumbers(fields, kMatrix, kMatrix);
  rasterType = ReadTagNumber(fields);
  hasCoordinateSystem = fields.Bool();
  noData = fields.ByteText(kMostTextBytes);
  metadata = ReadMetadataKinds(fields);
  return facts;
}

}  // namespace rasterkit::detail
