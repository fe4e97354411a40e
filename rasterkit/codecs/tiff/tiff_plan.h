#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_encoder.h>

namespace rasterkit::detail {

/// How rows of a raster are converted to rows of a TIFF file.
enum class TiffRowOrder {
  same,
  /// B G R to R G B.
  rgb,
  /// B G R and an unused byte to R G B.
  rgbOf32,
  /// B G R A to R G B A.
  rgba
};

/// The content of a TIFF file of a raster, with the numbers of the tags.
struct TiffPlan {
  uint32_t width = 0, height = 0;
  uint16_t bits = 8, samples = 1;
  uint16_t photometric = 0, compression = 1, predictor = 1;
  /// Level of Deflate, 1 to 9; nothing for other compressions.
  std::optional<int> level;
  bool hasAlpha = false;
  TiffRowOrder order = TiffRowOrder::same;
  size_t rowBytes = 0;
  uint32_t rowsPerStrip = 1;
  /// True for 64-bit offsets.
  bool isBig = false;
  /// All reds, then greens, then blues of a palette file, 16 bits each.
  std::vector<uint16_t> colorMap;

  uint32_t Strips() const { return (height + rowsPerStrip - 1) / rowsPerStrip; }
};

/// Throws FormatError for a raster that cannot be written this way.
TiffPlan PlanTiff(const Raster& raster, const TiffWriteOptions& options);

/// True if a file with that many bytes of rows and that compression could exceed 32-bit offsets.
bool NeedsBigTiff(uint64_t rowBytes, uint64_t height, uint16_t compression);

/// Compares the colors alone: the flags of an entry do not change how it looks.
bool HasColors(const HPALETTE& palette, const HPALETTE& others);
bool IsWhiteAndBlack(const HPALETTE& palette);

/// The color map tag of a palette of 2^bits entries.
std::vector<uint16_t> ColorMapOf(const HPALETTE& palette, int bits);

}  // namespace rasterkit::detail
