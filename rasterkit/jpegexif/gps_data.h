#pragma once

#include <cstdint>
#include <string>

#include <rasterkit/jpegexif/date_time.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A latitude or a longitude.
struct RASTERKIT_EXPORT TrecKoordGPS {
  /// 'N', 'S', 'E' or 'W'; 0 if the photo states none.
  char Ref = '\0';
  double Grad = 0;
  double GMin = 0;
  double GSec = 0;

  /// Degrees with their fraction, negative in the south and the west.
  double Koord() const;
};

/// An angle in degrees: 'T' counts from true north, 'M' from magnetic north.
struct TrecWinkelGPS {
  char Ref = '\0';
  double Winkel = 0;
};

/// Decoded GPS directory of a photo.
class RASTERKIT_EXPORT TGPSData {
 public:
  int32_t VersionID = 0;
  TrecKoordGPS Latitude;
  TrecKoordGPS Longitude;
  /// 0 above sea level, 1 below.
  uint8_t AltitudeRef = 0;
  /// Meters from sea level, in the direction of `AltitudeRef`.
  double Altitude = 0;
  /// Time of day, UTC.
  TDateTime TimeStamp = 0;
  std::string Satellites;
  char Status = '\0';
  char MeasureMode = '\0';
  double DOP = 0;
  char SpeedRef = '\0';
  double Speed = 0;
  TrecWinkelGPS Track;
  TrecWinkelGPS ImageDirection;
  std::string MapDatum;
  TrecKoordGPS DestLatitude;
  TrecKoordGPS DestLongitude;
  TrecWinkelGPS DestBearing;
  char DestDistanceRef = '\0';
  double DestDistance = 0;
  int32_t ProcessingMode = 0;
  std::string AreaInformation;
  TDateTime DateStamp = 0;
  int32_t Differential = 0;

  /// Meters above sea level; 0 for a place below it.
  double Elevation() const { return AltitudeRef == 0 ? Altitude : 0; }
};

}  // namespace rasterkit
