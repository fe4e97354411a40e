// Stores decoded entries in the fields of the EXIF and the GPS data.

#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/jpegexif/exif_text.h>
#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

/// Orientations 3, 6 and 8 are rotations; the mirrored ones count as upright.
int32_t RotationOf(int32_t orientation) {
  switch (orientation) {
    case 3:
      return 180;
    case 6:
      return 270;
    case 8:
      return 90;
    default:
      return 0;
  }
}

char FirstCharacter(const TTagEntry& entry) {
  return entry.Inhalt.empty() ? '\0' : entry.Inhalt.front();
}

/// Four version bytes as one number. The weight of the third byte is 11, which is part of the
/// interface.
int32_t VersionNumber(const std::string& raw) {
  return ByteAt(raw, 1) * 1000 + ByteAt(raw, 2) * 100 + ByteAt(raw, 3) * 11;
}

TrecKoordGPS* CoordinateOf(TGPSData& gps, uint16_t tag) {
  switch (tag) {
    case 2:
      return &gps.Latitude;
    case 4:
      return &gps.Longitude;
    case 20:
      return &gps.DestLatitude;
    case 22:
      return &gps.DestLongitude;
    default:
      return nullptr;
  }
}

/// Integer part, clamped to 32 bits.
int32_t WholeNumber(double value) {
  constexpr double kLeast = std::numeric_limits<int32_t>::min();
  constexpr double kMost = std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(std::clamp(value, kLeast, kMost));
}

/// Text of a user comment: after the eight bytes that state its character code, without its last
/// byte.
void StoreComment(TExifData& exif, TTagEntry& entry) {
  constexpr size_t kCodePrefix = 8;
  exif.CommentPosn = entry.RawPos;
  exif.CommentSize = entry.RawSize - static_cast<int64_t>(kCodePrefix) - 1;
  const bool hasText = exif.CommentSize > 0 && entry.RawBuff.size() > kCodePrefix;
  const std::string_view text = hasText ? std::string_view(entry.RawBuff).substr(kCodePrefix) : "";
  const auto size = static_cast<size_t>(std::max<int64_t>(exif.CommentSize, 0));
  exif.Comments = Utf8OfBytes(Trim(text.substr(0, size)));
  entry.Inhalt = exif.Comments;
}

std::string TwoDigits(int64_t value) {
  std::string text = std::to_string(value);
  return value >= 0 && value < 10 ? text.insert(0, 1, '0') : text;
}

}  // namespace

std::string detail::CoordinateText(const std::string& instr, uint16_t tag, TImageData& image) {
  const double degrees = GetIrrational(StrNth(instr, cDataSep, 1));
  double minutes = GetIrrational(StrNth(instr, cDataSep, 2));
  double seconds = GetIrrational(StrNth(instr, cDataSep, 3));
  if (seconds == 0) {
    seconds = (minutes - std::trunc(minutes)) * 100 * 0.6;
    minutes = std::trunc(minutes);
  }
  TrecKoordGPS* target = image.GPSData ? CoordinateOf(*image.GPSData, tag) : nullptr;
  if (target != nullptr) {
    target->Grad = degrees;
    target->GMin = minutes;
    target->GSec = seconds;
  }
  return FixedText(degrees, 0) + "\u00B0 " + FixedText(minutes, 0) + "' " + FixedText(seconds, 2) +
         "''";
}

std::string detail::TimeText(const std::string& instr, uint16_t, TImageData& image) {
  const auto part = [&instr](int n) {
    return static_cast<int64_t>(GetIrrational(StrNth(instr, cDataSep, n)));
  };
  const int64_t hour = part(1), minute = part(2), second = part(3);
  // A camera without a fix can write any numbers; they must not hide the rest of the photo's data.
  if (image.GPSData && IsTimeOfDay(hour, minute, second, 0)) {
    image.GPSData->TimeStamp = EncodeTime(hour, minute, second, 0);
  }
  return TwoDigits(hour) + ":" + TwoDigits(minute) + ":" + TwoDigits(second);
}

void TImageData::ProcTagExif(TTagEntry& entry) {
  if (!ExifData) return;
  const auto number = [&] { return WholeNumber(GetNumber(entry.RawBuff, entry.FmtType)); };
  switch (entry.Tag) {
    case 256:
    case 40962:
      ExifData->Width = number();
      break;
    case 257:
    case 40963:
      ExifData->Height = number();
      break;
    case 271:
      ExifData->CameraMake = entry.Inhalt;
      break;
    case 272:
      ExifData->CameraModel = entry.Inhalt;
      break;
    case kTagOrientation:
      ExifData->Rotation = RotationOf(number());
      break;
    case 306:
    case 36867:
      ExifData->DateTime = entry.Inhalt;
      break;
    case 36864:
      ExifData->ExifVersion = Utf8OfBytes(entry.RawBuff);
      break;
    case 37385:
      ExifData->FlashUsed = number();
      break;
    case 37510:
      StoreComment(*ExifData, entry);
      break;
    default:
      break;
  }
}

void TImageData::ProcTagGPS(TTagEntry& entry) {
  if (!GPSData) return;
  TGPSData& gps = *GPSData;
  const auto number = [&] { return GetNumber(entry.RawBuff, entry.FmtType); };
  const auto letter = [&] { return FirstCharacter(entry); };
  switch (entry.Tag) {
    case 0:
      if (entry.RawSize == 4) gps.VersionID = VersionNumber(entry.RawBuff);
      break;
    case 1:
      gps.Latitude.Ref = letter();
      break;
    case 3:
      gps.Longitude.Ref = letter();
      break;
    case 5:
      gps.AltitudeRef = ByteAt(entry.RawBuff, 1);
      break;
    case 6:
      gps.Altitude = number();
      entry.Inhalt = detail::FixedText(gps.Altitude, 2) + " m";
      break;
    case 12:
      gps.SpeedRef = letter();
      break;
    case 13:
      gps.Speed = number();
      break;
    case 14:
      gps.Track.Ref = letter();
      break;
    case 15:
      gps.Track.Winkel = number();
      break;
    case 16:
      gps.ImageDirection.Ref = letter();
      break;
    case 17:
      gps.ImageDirection.Winkel = number();
      break;
    case 18:
      gps.MapDatum = entry.Inhalt;
      break;
    case 19:
      gps.DestLatitude.Ref = letter();
      break;
    case 21:
      gps.DestLongitude.Ref = letter();
      break;
    case 23:
      gps.DestBearing.Ref = letter();
      break;
    case 24:
      gps.DestBearing.Winkel = number();
      break;
    case 25:
      gps.DestDistanceRef = letter();
      break;
    case 26:
      gps.DestDistance = number();
      break;
    default:
      break;
  }
}

}  // namespace rasterkit
