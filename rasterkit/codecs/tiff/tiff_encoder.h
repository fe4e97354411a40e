#pragma once

#include <array>
#include <optional>

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// How the rows of a TIFF file are packed. `standard` is LZW for colour and grey and CCITT G4 for
/// 1-bit pictures, with a predictor where it helps.
enum class TiffCompression { standard, none, lzw, deflate, packBits, group4 };

/// The two tags that place a picture in map coordinates; see GeoTIFF's ModelPixelScaleTag and
/// ModelTiepointTag.
struct TiffGeoTags {
  std::array<double, 3> pixelScale{};
  /// Raster I J K, map X Y Z.
  std::array<double, 6> tiePoint{};
};

struct TiffWriteOptions {
  TiffCompression compression = TiffCompression::standard;
  std::optional<TiffGeoTags> geo;
  /// Rows of 32-bit rasters hold R G B A instead of B G R A, and alpha is written whatever the
  /// raster says of it. Without effect on other rasters.
  bool exchangeRedBlue = false;
  /// Threads that compress strips, 1 to 64. The bytes do not depend on it.
  int threads = 1;
};

/// Writes a TIFF file of one picture at the stream's position: 1-, 4- and 8-bit with palettes (a
/// black-and-white 1-bit palette in either order goes by photometric, a grey ramp of 16 or 256 as
/// grey), 24-bit as RGB, 32-bit with an alpha channel when it is defined, else as RGB. 15- and
/// 16-bit rasters: convert first (FormatError). Resolution and ICC profile are written. Throws
/// FormatError for a picture without pixels.
RASTERKIT_EXPORT void EncodeTiff(const Raster& raster, TStream& stream,
                                 const TiffWriteOptions& options = {});

}  // namespace rasterkit
