#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_encoder.h>

namespace rasterkit::detail {

/// How the rows of a raster become rows of a TIFF file.
enum class TiffRowOrder {
  same,
  /// B G R to R G B.
  rgb,
  /// B G R and a byte without meaning to R G B.
  rgbOf32,
  /// B G R A to R G B A.
  rgba
};

/// What a TIFF file of a raster will hold, numbers as the tags number them.
struct TiffPlan {
  uint32_t width = 0, height = 0;
  uint16_t bits = 8, samples = 1;
  uint16_t photometric = 0, compression = 1, predictor = 1;
  /// How hard Deflate tries, 1 to 9; nothing for other ways to pack.
  std::optional<int> level;
  bool hasAlpha = false;
  TiffRowOrder order = TiffRowOrder::same;
  size_t rowBytes = 0;
  uint32_t rowsPerStrip = 1;
  /// Offsets of 64 bits.
  bool isBig = false;
  /// All reds, then greens, then blues of a palette file, 16 bits each.
  std::vector<uint16_t> colorMap;

  uint32_t Strips() const { return (height + rowsPerStrip - 1) / rowsPerStrip; }
};

/// Throws FormatError for a raster that a TIFF file cannot hold that way.
TiffPlan PlanTiff(const Raster& raster, const TiffWriteOptions& options);

/// True when a file of that many bytes of rows, packed that way, could exceed what offsets of 32
/// bits reach.
bool NeedsBigTiff(uint64_t rowBytes, uint64_t height, uint16_t compression);

}  // namespace rasterkit::detail
