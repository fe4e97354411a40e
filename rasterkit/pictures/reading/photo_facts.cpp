#include <algorithm>
#include <array>

#include <rasterkit/codecs/metadata.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/raw_orientation.h>
#include <rasterkit/pictures/reading/photo_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {
namespace {

/// Largest EXIF block of a segment: its length field and "Exif" 0 0 need the rest.
constexpr size_t kLargestExif = 65535 - 8;

/// Tags of the GPS directory.
enum GpsTag : uint16_t { gpsLatitude = 2, gpsLongitude = 4, gpsAltitude = 6 };

/// Reads rationals, pairs of 32-bit integers. Cameras without GPS reception write 0/0, which is not
/// a number.
bool HasDenominator(const std::string& rationals) {
  constexpr size_t kPair = 8, kHalf = 4;
  for (size_t at = 0; at + kPair <= rationals.size(); at += kPair) {
    if (rationals.compare(at + kHalf, kHalf, std::string(kHalf, '\0')) != 0) return true;
  }
  return false;
}

bool HasGpsNumber(const TExifData& data, GpsTag tag) {
  const auto end = data.FTagArray.begin() + data.FTagCount;
  return std::any_of(data.FTagArray.begin(), end, [tag](const TTagEntry& entry) {
    return entry.TagType == tagGPS && entry.Tag == tag && HasDenominator(entry.RawBuff);
  });
}

/// Turns -0 into 0.
double WithoutSignOfZero(double value) {
  return value + 0.0;
}

std::optional<GpsPosition> PositionOf(const TImageData& data) {
  if (!data.ExifData || !data.GPSData) return std::nullopt;
  if (!HasGpsNumber(*data.ExifData, gpsLatitude) || !HasGpsNumber(*data.ExifData, gpsLongitude)) {
    return std::nullopt;
  }
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

/// Builds a JPEG header that contains only the EXIF block, so that the section reader finds the
/// block at any place in the file.
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

/// GetJpgRotation for bytes in memory.
int RotationQuery(std::span<const uint8_t> jpeg) {
  TImageData data;
  TSpanStream file(jpeg);
  return data.ReadJpegSections(file) && data.ExifData ? data.ExifData->Rotation : 0;
}

/// Runs a function that reads the EXIF block. Errors become warnings, because the picture itself
/// may be intact.
template <class Reading>
void WithWarning(PhotoFacts& facts, Reading reading) {
  try {
    reading();
  } catch (const Error& error) {
    const std::string warning = "EXIF: " + error.Reason();
    if (facts.warnings.empty() || facts.warnings.back() != warning) {
      facts.warnings.push_back(warning);
    }
  }
}

}  // namespace

PhotoFacts ReadPhotoFacts(std::span<const uint8_t> jpeg) {
  PhotoFacts facts = ReadExifFacts(ReadMetadata(jpeg).exif);
  // ReadRawOrientation tolerates damage that stops TImageData.
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

}  // namespace rasterkit
