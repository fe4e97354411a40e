#pragma once

#include <array>
#include <optional>

#include <rasterkit/raster/raster.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Compression of a TIFF file. `standard` is LZW for color and gray, with a predictor if it helps,
/// and CCITT G4 for 1-bit pictures.
enum class TiffCompression { standard, none, lzw, deflate, packBits, group4 };

/// The two tags that place a picture in map coordinates: ModelPixelScaleTag and ModelTiepointTag
/// of GeoTIFF.
struct TiffGeoTags {
  std::array<double, 3> pixelScale{};
  /// Raster I J K, map X Y Z.
  std::array<double, 6> tiePoint{};
};

struct TiffWriteOptions {
  TiffCompression compression = TiffCompression::standard;
  std::optional<TiffGeoTags> geo;
  /// True if rows of 32-bit rasters hold R G B A instead of B G R A; alpha is then always written.
  /// No effect on other rasters.
  bool exchangeRedBlue = false;
  /// Threads that compress strips, 1 to 64. The bytes do not depend on it.
  int threads = 1;
};

/// Writes a TIFF file of one picture at the stream's position: 1-, 4- and 8-bit with palettes (a
/// 1-bit palette of black and white becomes a photometric tag, a gray ramp of 16 or 256 becomes
/// gray), 24-bit as RGB, 32-bit with an alpha channel if alpha is defined, else as RGB. Resolution
/// and ICC profile are written. For a pipe or a device the file is first put together in memory.
/// Throws FormatError for 15- and 16-bit rasters (convert them first) and for a picture without
/// pixels.
RASTERKIT_EXPORT void EncodeTiff(const Raster& raster, TStream& stream,
                                 const TiffWriteOptions& options = {});

}  // namespace rasterkit
