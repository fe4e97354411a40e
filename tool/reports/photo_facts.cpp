#include "tool/reports/photo_facts.h"

#include <algorithm>
#include <array>

#include <rasterkit/codecs/metadata.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/raw_orientation.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::tool {
namespace {

/// What fits into a segment behind its length and "Exif" 0 0.
constexpr size_t kLargestExif = 65535 - 8;

/// Entries of the GPS directory.
enum GpsTag : uint16_t { gpsLatitude = 2, gpsLongitude = 4, gpsAltitude = 6 };

/// Rationals are pairs of four bytes each. Cameras without reception write 0/0, which is no number.
bool HasDenominator(const std::string& rationals) {
  constexpr size_t pair = 8, half = 4;
  for (size_t at = 0; at + pair <= rationals.size(); at += pair)
    if (rationals.compare(at + half, half, std::string(half, '\0')) != 0) return true;
  return false;
}

bool HasGpsNumber(const TExifData& data, GpsTag tag) {
  const auto end = data.FTagArray.begin() + data.FTagCount;
  return std::any_of(data.FTagArray.begin(), end, [tag](const TTagEntry& entry) {
    return entry.TagType == tagGPS && entry.Tag == tag && HasDenominator(entry.RawBuff);
  });
}

/// Nothing lies 0 degrees south: a zero loses its sign.
double WithoutSignOfZero(double value) {
  return value + 0.0;
}

std::optional<GpsPosition> PositionOf(const TImageData& data) {
  if (!data.ExifData || !data.GPSData) return std::nullopt;
  if (!HasGpsNumber(*data.ExifData, gpsLatitude) || !HasGpsNumber(*data.ExifData, gpsLongitude))
    return std::nullopt;
  GpsPosition position;
  position.latitude = WithoutSignOfZero(data.GPSData->Latitude.Koord());
  position.longitude = WithoutSignOfZero(data.GPSData->Longitude.Koord());
  if (HasGpsNumber(*data.ExifData, gpsAltitude)) {
    const bool isBelowSea = data.GPSData->AltitudeRef == 1;
    const double altitude = data.GPSData->Altitude;
    position.altitude = WithoutSignOfZero(isBelowSea ? -altitude : altitude);
  }
  return position;
}

/// A JPEG header with nothing but the EXIF block in it, which the section reader finds whatever
/// stood before it.
std::vector<uint8_t> HeaderAround(std::span<const uint8_t> exif) {
  const size_t length = exif.size() + 8;
  const std::array<uint8_t, 12> front = {0xFF,
                                         0xD8,
                                         0xFF,
                                         0xE1,
                                         static_cast<uint8_t>(length >> 8),
                                         static_cast<uint8_t>(length),
                                         'E',
                                         'x',
                                         'i',
                                         'f',
                                         0,
                                         0};
  const std::array<uint8_t, 4> endOfImage = {0xFF, 0xD9, 0, 2};
  std::vector<uint8_t> header(front.size() + exif.size() + endOfImage.size());
  auto place = std::copy(front.begin(), front.end(), header.begin());
  place = std::copy(exif.begin(), exif.end(), place);
  std::copy(endOfImage.begin(), endOfImage.end(), place);
  return header;
}

/// GetJpgRotation over bytes that are in memory already.
int RotationQuery(std::span<const uint8_t> jpeg) {
  TImageData data;
  TSpanStream file(jpeg);
  return data.ReadJpegSections(file) && data.ExifData ? data.ExifData->Rotation : 0;
}

/// Runs a reading of the EXIF block; what it raises becomes a warning, as the picture itself may be
/// sound.
template <class Reading>
void WithWarning(PhotoFacts& facts, Reading reading) {
  try {
    reading();
  } catch (const Error& error) {
    const std::string warning = "EXIF: " + error.Reason();
    if (facts.warnings.empty() || facts.warnings.back() != warning)
      facts.warnings.push_back(warning);
  }
}

}  // namespace

PhotoFacts ReadPhotoFacts(std::span<const uint8_t> jpeg) {
  PhotoFacts facts = ReadExifFacts(ReadMetadata(jpeg).exif);
  // Its walk forgives damage that ends the plain one.
  TSpanStream file(jpeg);
  facts.orientation = ReadRawOrientation(file);
  WithWarning(facts, [&] { facts.rotation = RotationQuery(jpeg); });
  return facts;
}

PhotoFacts ReadExifFacts(std::span<const uint8_t> exif) {
  PhotoFacts facts;
  if (exif.empty() || exif.size() > kLargestExif) return facts;
  WithWarning(facts, [&] {
    TMemoryStream header(HeaderAround(exif));
    facts.orientation = ReadRawOrientation(header);
    header.SetPosition(0);
    TImageData data;
    data.ReadJpegSections(header);
    facts.gps = PositionOf(data);
  });
  return facts;
}

}  // namespace rasterkit::tool
