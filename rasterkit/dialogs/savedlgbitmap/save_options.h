#pragma once

#include <cstdint>

namespace rasterkit {

/// How a picture is saved.
struct TrecSaveBitmap {
  /// Graphic type (see graphic_types.h): 1, 6, 8 or 10; from a list of files also 2 and 4.
  int32_t BitmapFormat = 0;
  /// Color depth in bits per pixel: 1, 4, 8 or 24.
  int32_t BitsPerPix = 0;
  /// Resolution in dots per inch.
  int32_t BitsPerInch = 0;
  /// Compression mode, at most 2.
  int32_t JpgCompress = 0;
  /// JPEG quality, 10 to 100; the settings window treats any other number as 90.
  int32_t JpgQuality = 0;

  friend bool operator==(const TrecSaveBitmap&, const TrecSaveBitmap&) = default;
};

}  // namespace rasterkit
