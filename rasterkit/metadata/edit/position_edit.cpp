#include <array>
#include <cmath>
#include <string_view>

#include <fmt/format.h>

#include <rasterkit/metadata/edit/date_text.h>
#include <rasterkit/metadata/edit/exif_editor.h>
#include <rasterkit/metadata/edit/iptc_records.h>
#include <rasterkit/metadata/edit/places_in_xmp.h>
#include <rasterkit/metadata/edit/position_edit.h>
#include <rasterkit/metadata/edit/xmp_setting.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Id = ExifDirectoryId;

constexpr uint16_t kByte = 1, kRational = 5, kDatum = 18;
/// Satellites, status, mode and precision of the old reception, method, area, correction.
constexpr std::array<uint16_t, 8> kOfReception = {8, 9, 10, 11, 27, 28, 30, 31};

// Seconds in steps of 0.3 mm on the ground.
constexpr int64_t kSteps = 100'000, kPerMinute = 60 * kSteps, kPerDegree = 60 * kPerMinute;

int64_t StepsOf(double degrees) {
  return std::llround(std::abs(degrees) * static_cast<double>(kPerDegree));
}

TagValue Fractions(uint16_t tag, std::initializer_list<std::pair<int64_t, int64_t>> parts) {
  TagValue value = {tag, kRational, parts.size(), {}};
  for (const auto& [above, below] : parts) {
    for (const int64_t part : {above, below}) {
      for (int i = 0; i < 4; ++i) value.bytes.push_back(static_cast<uint8_t>(part >> 8 * i));
    }
  }
  return value;
}

TagValue DegreesTag(uint16_t tag, double degrees) {
  const int64_t steps = StepsOf(degrees);
  return Fractions(tag, {{steps / kPerDegree, 1},
                         {steps % kPerDegree / kPerMinute, 1},
                         {steps % kPerMinute, kSteps}});
}

TagValue AltitudeTag(double altitude) {
  constexpr int64_t kPerMeter = 1000;
  return Fractions(
      exif::kAltitude,
      {{std::llround(std::abs(altitude) * static_cast<double>(kPerMeter)), kPerMeter}});
}

void Check(const GpsPosition& position) {
  constexpr double kMostLatitude = 90, kMostLongitude = 180, kMostAltitude = 4e6;
  if (!(std::abs(position.latitude) <= kMostLatitude)) {
    throw RangeError(fmt::format("the latitude {} is outside -90 to 90", position.latitude));
  }
  if (!(std::abs(position.longitude) <= kMostLongitude)) {
    throw RangeError(fmt::format("the longitude {} is outside -180 to 180", position.longitude));
  }
  if (position.altitude && !(std::abs(*position.altitude) <= kMostAltitude)) {
    throw RangeError(fmt::format("the altitude {} exceeds 4,000 km", *position.altitude));
  }
}

void SetInExif(Metadata& metadata, const GpsPosition& position, const EditedPicture& picture) {
  ExifEditor editor(metadata, picture);
  editor.SetText(Id::gps, exif::kLatitudeRef, std::signbit(position.latitude) ? "S" : "N");
  editor.Set(Id::gps, DegreesTag(exif::kLatitude, position.latitude));
  editor.SetText(Id::gps, exif::kLongitudeRef, std::signbit(position.longitude) ? "W" : "E");
  editor.Set(Id::gps, DegreesTag(exif::kLongitude, position.longitude));
  editor.SetText(Id::gps, kDatum, "WGS-84");
  if (position.altitude) {
    const uint8_t isBelowSea = std::signbit(*position.altitude) ? 1 : 0;
    editor.Set(Id::gps, {exif::kAltitudeRef, kByte, 1, {isBelowSea}});
    editor.Set(Id::gps, AltitudeTag(*position.altitude));
  } else {
    editor.Block().Remove(Id::gps, exif::kAltitudeRef);
    editor.Block().Remove(Id::gps, exif::kAltitude);
  }
  for (const uint16_t tag : kOfReception) editor.Block().Remove(Id::gps, tag);
  editor.Finish();
}

/// "48,8.5030000N".
std::string XmpDegrees(double degrees, char positive, char negative) {
  const int64_t steps = StepsOf(degrees);
  // A minute has as many steps as 6,000,000: seven digits behind the point lose none of them.
  return fmt::format("{},{:.7f}{}", steps / kPerDegree,
                     static_cast<double>(steps % kPerDegree) / static_cast<double>(kPerMinute),
                     std::signbit(degrees) ? negative : positive);
}

void SetInXmp(std::string& packet, const GpsPosition& position) {
  const XmpPacket before(packet);
  const bool statesOne = before.Has(xmp_name::kExif, "GPSLatitude") ||
                         before.Has(xmp_name::kExif, "GPSLongitude") ||
                         before.Has(xmp_name::kExif, "GPSAltitude");
  // Drones have properties of their own.
  RemovePlacesOfMakers(packet);
  if (!statesOne) return;
  const auto fact = [](std::string_view name) { return *FindXmpFact(name); };
  SetXmp(packet, fact("exif:GPSLatitude"), {XmpDegrees(position.latitude, 'N', 'S')});
  SetXmp(packet, fact("exif:GPSLongitude"), {XmpDegrees(position.longitude, 'E', 'W')});
  if (position.altitude) {
    constexpr double kPerMeter = 1000;
    SetXmp(packet, fact("exif:GPSAltitude"),
           {fmt::format("{}/1000", std::llround(std::abs(*position.altitude) * kPerMeter))});
    SetXmp(packet, fact("exif:GPSAltitudeRef"), {std::signbit(*position.altitude) ? "1" : "0"});
  } else {
    RemoveXmp(packet, fact("exif:GPSAltitude"));
    RemoveXmp(packet, fact("exif:GPSAltitudeRef"));
  }
}

// --- Dates ---------------------------------------------------------------------------------------

struct DateTags {
  Id directory;
  uint16_t tag, fractionTag, offsetTag;
};
constexpr DateTags kDates[] = {{Id::exif, exif::kDateTaken, 37521, 36881},
                               {Id::exif, exif::kDateDigitized, 37522, 36882},
                               {Id::main, exif::kDateChanged, 37520, 36880}};

void SetDateInExif(Metadata& metadata, const MomentText& moment, const EditedPicture& picture) {
  ExifEditor editor(metadata, picture);
  for (const DateTags& date : kDates) {
    editor.SetText(date.directory, date.tag, moment.Exif());
    if (moment.fraction.empty()) {
      editor.Block().Remove(Id::exif, date.fractionTag);
    } else {
      editor.SetText(Id::exif, date.fractionTag, moment.fraction);
    }
    if (!moment.offset.empty()) editor.SetText(Id::exif, date.offsetTag, moment.offset);
  }
  editor.Finish();
}

constexpr std::string_view kXmpDates[] = {"exif:DateTimeOriginal", "exif:DateTimeDigitized",
                                          "xmp:CreateDate",        "xmp:ModifyDate",
                                          "tiff:DateTime",         "photoshop:DateCreated"};

void SetDateInXmp(std::string& packet, const MomentText& moment) {
  for (const std::string_view name : kXmpDates) {
    const XmpFact& fact = *FindXmpFact(name);
    if (XmpPacket(packet).Has(fact.uri, fact.name)) SetXmp(packet, fact, {moment.Iso()});
  }
}

void SetDateInIptc(Metadata& metadata, const MomentText& moment) {
  constexpr uint8_t kDays[] = {55, 62}, kTimes[] = {60, 63};
  IptcRecords records(metadata.iptc);
  std::string day = moment.day, time = moment.time;
  time += moment.offset.empty() ? "+00:00" : moment.offset;
  std::erase(day, ':');
  std::erase(time, ':');
  for (const uint8_t dataSet : kDays) {
    if (records.Has(dataSet)) records.Set(dataSet, {day});
  }
  for (const uint8_t dataSet : kTimes) {
    if (records.Has(dataSet)) records.Set(dataSet, {time});
  }
  metadata.iptc = records.Bytes();
}

}  // namespace

void SetPosition(Metadata& metadata, const GpsPosition& position, const EditedPicture& picture) {
  Check(position);
  SetInExif(metadata, position, picture);
  for (std::string* packet : {&metadata.xmp, &metadata.extendedXmp}) {
    if (!packet->empty()) SetInXmp(*packet, position);
  }
}

void SetDate(Metadata& metadata, const std::string& date, const EditedPicture& picture) {
  MomentText moment;
  try {
    moment = ReadMoment(date);
  } catch (const RangeError& error) {
    throw RangeError("date: " + error.Reason());
  }
  SetDateInExif(metadata, moment, picture);
  for (std::string* packet : {&metadata.xmp, &metadata.extendedXmp}) {
    if (!packet->empty()) SetDateInXmp(*packet, moment);
  }
  if (!metadata.iptc.empty()) SetDateInIptc(metadata, moment);
  for (PictureText& text : metadata.texts) {
    if (text.keyword == "Creation Time") text.text = moment.Iso();
  }
}

}  // namespace rasterkit::detail
