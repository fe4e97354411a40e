#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace rasterkit {

/// How a JPEG file is coded.
struct JpegForm {
  struct Component {
    /// Identifier, sampling factors 1 to 4, number of the quantization table 0 to 3.
    int id = 1, h = 1, v = 1, table = 0;
    friend bool operator==(const Component&, const Component&) = default;
  };
  /// As in the frame header.
  std::vector<Component> components;
  /// Quantization tables by number, in natural (row by row) order; nothing where the file has none.
  std::array<std::optional<std::array<uint16_t, 64>>, 4> tables;
  bool progressive = false, arithmetic = false;
  /// Blocks (MCUs) between restart markers; 0 for none.
  int restartInterval = 0;
  /// Color transform of the Adobe segment: 0 none, 1 YCbCr, 2 YCCK; nothing without a segment.
  std::optional<int> adobeTransform;
  friend bool operator==(const JpegForm&, const JpegForm&) = default;
};

/// How a PNG file is coded.
struct PngForm {
  /// Bits per sample 1, 2, 4, 8, 16; color type 0 gray, 2 RGB, 3 palette, 4 gray and alpha, 6 RGBA.
  int bits = 8, colorType = 2;
  bool interlaced = false;
  friend bool operator==(const PngForm&, const PngForm&) = default;
};

/// How a page of a TIFF file is coded. The numbers are those of the tags.
struct TiffForm {
  int compression = 1, predictor = 1, photometric = 2, fillOrder = 1;
  /// Rows of a strip; 0 for tiles.
  uint32_t rowsPerStrip = 0;
  /// 0 for strips.
  uint32_t tileWidth = 0, tileHeight = 0;
  bool isPlanar = false, isBigEndian = false, isBigTiff = false;
  /// Quality of JPEG in TIFF, estimated from its tables; 0 if it is not JPEG.
  int jpegQuality = 0;
  /// Chroma subsampling of YCbCr (tag 530).
  int subsamplingX = 1, subsamplingY = 1;
  friend bool operator==(const TiffForm&, const TiffForm&) = default;
};

/// How a file is coded, beyond its pixels; empty for formats without choices (BMP, GIF).
using Form = std::variant<std::monostate, JpegForm, PngForm, TiffForm>;

}  // namespace rasterkit
