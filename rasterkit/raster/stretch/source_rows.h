#pragma once

#include <optional>
#include <vector>

#include <rasterkit/kernels/transfer/pick_pixels.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/raster/stretch/axis_positions.h>

namespace rasterkit::detail {

/// Rows of a source as 32-bit pixels, one per column that the target needs. Only these columns are
/// converted, and consecutive requests for one row convert it once. Alpha is 255; a 32-bit source
/// keeps its own.
///
/// If many columns are skipped, the needed ones are gathered first and then converted; else the
/// other way round.
class SourceRows {
 public:
  /// The source and the columns, at least one, must outlive this object.
  SourceRows(const Raster& source, const AxisPositions& columns);

  /// Pixels of source row `y`; valid until the next call.
  const RGBArec* Row(int y);

 private:
  void Load(int y);
  const RGBArec* GatheredThenConverted(const uint8_t* row);
  const RGBArec* ConvertedThenGathered(const uint8_t* row);

  const Raster& source_;
  const std::vector<int>& columns_;
  const PixelTable table_;
  const bool plainRun_;
  int firstColumn_, columnCount_;
  bool gathersFirst_;
  /// Gathers pixels of 1, 3 and 4 bytes; none where all columns are neighbors.
  std::optional<kernels::PixelPicker> picker_;
  int loaded_ = -1;
  const RGBArec* row_ = nullptr;
  std::vector<uint8_t> picked_;
  std::vector<RGBArec> converted_, gathered_;
};

}  // namespace rasterkit::detail
