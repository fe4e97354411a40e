#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/facts_of_metadata.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using Id = ExifDirectoryId;

constexpr double kMinutes = 60, kSeconds = 3600;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// "2019-07-04T13:05:09" of "2019:07:04 13:05:09" or of a text of XMP with more behind it; empty if
/// it is no date. Cameras without a clock write blanks or zeros.
std::string DateOf(std::string text) {
  constexpr std::string_view kForm = "dddd-dd-ddTdd:dd:dd";
  if (text.size() < kForm.size()) return {};
  text.resize(kForm.size());
  for (size_t i = 0; i < kForm.size(); ++i) {
    if (kForm[i] == 'd') {
      if (!IsDigit(text[i])) return {};
    } else if (!IsDigit(text[i])) {
      text[i] = kForm[i];
    } else {
      return {};
    }
  }
  const auto number = [&](size_t at) { return (text[at] - '0') * 10 + text[at + 1] - '0'; };
  constexpr size_t kMonthAt = 5, kDayAt = 8, kHourAt = 11, kMinuteAt = 14, kSecondAt = 17;
  const bool isDay = number(kMonthAt) >= 1 && number(kMonthAt) <= 12 && number(kDayAt) >= 1 &&
                     number(kDayAt) <= 31;
  const bool isTime = number(kHourAt) < 24 && number(kMinuteAt) < 60 && number(kSecondAt) <= 60;
  return isDay && isTime && !text.starts_with("0000") ? text : "";
}

/// Degrees of three numbers; nothing if none of them is a number. Cameras without reception write
/// fractions with the denominator 0.
std::optional<double> DegreesOf(const ExifBlock& exif, uint16_t tag, uint16_t refTag,
                                char negative) {
  std::vector<double> parts = exif.Numbers(Id::gps, tag);
  const auto isNumber = [](double part) { return std::isfinite(part); };
  if (std::none_of(parts.begin(), parts.end(), isNumber)) return std::nullopt;
  parts.resize(3);
  double degrees = 0, unit = 1;
  for (const double part : parts) {
    if (isNumber(part)) degrees += part / unit;
    unit *= kMinutes;
  }
  const std::string ref = exif.Text(Id::gps, refTag);
  const bool isNegative = !ref.empty() && ref[0] == negative;
  // The sum turns -0 into 0.
  return (isNegative ? -degrees : degrees) + 0.0;
}

std::optional<GpsPosition> PositionOf(const ExifBlock& exif) {
  const auto latitude = DegreesOf(exif, exif::kLatitude, exif::kLatitudeRef, 'S');
  const auto longitude = DegreesOf(exif, exif::kLongitude, exif::kLongitudeRef, 'W');
  if (!latitude || !longitude) return std::nullopt;
  GpsPosition position = {*latitude, *longitude, std::nullopt};
  const std::vector<double> altitude = exif.Numbers(Id::gps, exif::kAltitude);
  if (!altitude.empty() && std::isfinite(altitude[0])) {
    const bool isBelowSea = exif.Number(Id::gps, exif::kAltitudeRef) == 1U;
    position.altitude = (isBelowSea ? -altitude[0] : altitude[0]) + 0.0;
  }
  return position;
}

std::string DateOf(const ExifBlock& exif) {
  for (const auto& [directory, tag] :
       {std::pair(Id::exif, exif::kDateTaken), std::pair(Id::exif, exif::kDateDigitized),
        std::pair(Id::main, exif::kDateChanged)}) {
    std::string date = DateOf(exif.Text(directory, tag));
    if (!date.empty()) return date;
  }
  return {};
}

/// A name as UTF-8. Longer ones are hostile.
std::string NameOf(const std::string& text) {
  constexpr size_t kMostBytes = 1000;
  return Utf8OfBytes(text.substr(0, kMostBytes));
}

// --- XMP -----------------------------------------------------------------------------------

constexpr std::string_view kTiffUri = "http://ns.adobe.com/tiff/1.0/";
constexpr std::string_view kExifUri = "http://ns.adobe.com/exif/1.0/";
constexpr std::string_view kXmpUri = "http://ns.adobe.com/xap/1.0/";

/// Reads a number without sign from the front of the text.
std::optional<double> TakeNumber(std::string_view& text) {
  double number = 0;
  const auto [end, fault] =
      std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  if (fault != std::errc() || !(number >= 0)) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  return number;
}

/// "48,8.503N" or "48,8,30N".
std::optional<double> XmpDegrees(std::string_view text, std::string_view directions) {
  double degrees = 0;
  for (const double unit : {1.0, kMinutes, kSeconds}) {
    const auto part = TakeNumber(text);
    if (!part) return std::nullopt;
    degrees += *part / unit;
    if (text.empty() || text[0] != ',') break;
    text.remove_prefix(1);
  }
  const size_t direction = text.size() == 1 ? directions.find(text[0]) : std::string_view::npos;
  if (direction == std::string_view::npos) return std::nullopt;
  return (direction == 0 ? degrees : -degrees) + 0.0;
}

/// "1234/10" or "123.4".
std::optional<double> XmpFraction(std::string_view text) {
  const auto number = TakeNumber(text);
  if (!number || text.empty()) return number;
  if (text[0] != '/') return std::nullopt;
  text.remove_prefix(1);
  const auto denominator = TakeNumber(text);
  return denominator && *denominator > 0 ? std::optional(*number / *denominator) : std::nullopt;
}

std::optional<GpsPosition> PositionOf(const XmpPacket& xmp) {
  const auto latitude = XmpDegrees(xmp.Get(kExifUri, "GPSLatitude").value_or(""), "NS");
  const auto longitude = XmpDegrees(xmp.Get(kExifUri, "GPSLongitude").value_or(""), "EW");
  if (!latitude || !longitude) return std::nullopt;
  GpsPosition position = {*latitude, *longitude, std::nullopt};
  if (const auto altitude = XmpFraction(xmp.Get(kExifUri, "GPSAltitude").value_or(""))) {
    const bool isBelowSea = xmp.Get(kExifUri, "GPSAltitudeRef") == "1";
    position.altitude = (isBelowSea ? -*altitude : *altitude) + 0.0;
  }
  return position;
}

void Complete(PhotoFacts& facts, const XmpPacket& xmp) {
  if (!facts.gps) facts.gps = PositionOf(xmp);
  for (const auto& [uri, name] :
       {std::pair(kExifUri, "DateTimeOriginal"), std::pair(kXmpUri, "CreateDate")}) {
    if (facts.date.empty()) facts.date = DateOf(xmp.Get(uri, name).value_or(""));
  }
  if (facts.make.empty()) facts.make = NameOf(xmp.Get(kTiffUri, "Make").value_or(""));
  if (facts.model.empty()) facts.model = NameOf(xmp.Get(kTiffUri, "Model").value_or(""));
}

}  // namespace

PhotoFacts FactsOf(const ExifBlock& exif) {
  PhotoFacts facts;
  facts.orientation = OrientationOf(exif);
  facts.gps = PositionOf(exif);
  facts.date = DateOf(exif);
  facts.make = NameOf(exif.Text(Id::main, exif::kMake));
  facts.model = NameOf(exif.Text(Id::main, exif::kModel));
  return facts;
}

PhotoFacts FactsOf(const Metadata& metadata) {
  const ExifBlock exif(metadata.exif);
  PhotoFacts facts = FactsOf(exif);
  if (exif.IsDamaged()) facts.warnings.emplace_back("EXIF: the block is damaged");
  const bool isWhole =
      facts.gps && !facts.date.empty() && !facts.make.empty() && !facts.model.empty();
  if (!metadata.xmp.empty() && !isWhole) Complete(facts, XmpPacket(metadata.xmp));
  return facts;
}

}  // namespace rasterkit
