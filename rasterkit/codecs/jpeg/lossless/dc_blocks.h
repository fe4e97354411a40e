#pragma once

#include <vector>

#include <rasterkit/codecs/jpeg/lossless/jpeg_coefficients.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit::detail {

/// The first coefficients of a component.
struct DcBlocks {
  const BlockRows* rows = nullptr;
  /// Sampling factors.
  int h = 1, v = 1;
  /// Step of the first coefficient in its quantization table.
  int step = 1;
};

/// A picture of the first coefficients.
struct DcPicture {
  std::vector<DcBlocks> components;
  J_COLOR_SPACE space = JCS_UNKNOWN;
  /// Inks are stored inverted.
  bool hasAdobe = false;
  /// Sides of the whole picture.
  int width = 0, height = 0;
};

/// True if the colors are known.
bool HasColors(const DcPicture& picture);

/// Makes the pixels; see DecodeJpegEighth. Calls RequireTime between rows.
Raster RowsOf(const DcPicture& picture);

}  // namespace rasterkit::detail
