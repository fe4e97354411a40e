#pragma once

#include <vector>

#include <rasterkit/raster/raster.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/raster/stretch/axis_positions.h>

namespace rasterkit::detail {

/// Rows of a source as 32-bit pixels, one for each column that a target wants. Only the columns
/// that are asked for are converted, and a row that is asked for again is not made again. Alpha is
/// 255 but for a 32-bit source, which keeps its own.
///
/// Where many columns are left out, the wanted ones are gathered first and then converted; else the
/// other way round.
class SourceRows {
 public:
  /// The source and the columns, of which there is at least one, must outlive this.
  SourceRows(const Raster& source, const AxisPositions& columns);

  /// The pixels of source row `y`; they stay until the next call.
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
  int loaded_ = -1;
  const RGBArec* row_ = nullptr;
  std::vector<uint8_t> picked_;
  std::vector<RGBArec> converted_, gathered_;
};

}  // namespace rasterkit::detail
