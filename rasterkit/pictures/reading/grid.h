#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/placement/no_data.h>
#include <rasterkit/raster/number_type.h>
#include <rasterkit/raster/raster.h>
#include <rasterkit/raster/samples.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Number type of a grid.
using GridType = NumberType;

/// The grid type of a pixel format; nothing for colors.
RASTERKIT_EXPORT std::optional<GridType> GridTypeOf(WICPixelFormat format);

/// "float32", "float16", "uint16", "int16" and so on.
RASTERKIT_EXPORT const char* GridTypeName(GridType type);

/// One number of a grid, exactly: whole ones are `int64_t`, unsigned ones `uint64_t`.
using GridNumber = std::variant<double, int64_t, uint64_t>;

/// The nearest double.
RASTERKIT_EXPORT double DoubleOf(const GridNumber& number);

/// Rows of numbers as stored in a file.
class RASTERKIT_EXPORT Grid {
 public:
  /// `rows` has 32 bits per pixel for float32, else 16.
  Grid(Raster rows, GridType type) : rows_(std::move(rows)), type_(type) {}
  /// Numbers of any type.
  explicit Grid(Samples numbers) : numbers_(std::move(numbers)), type_(numbers_->Layout().type) {}

  int Width() const { return numbers_ ? numbers_->Width() : rows_.Width(); }
  int Height() const { return numbers_ ? numbers_->Height() : rows_.Height(); }
  GridType Type() const { return type_; }
  int Bands() const { return numbers_ ? numbers_->Layout().bands : 1; }
  bool Holds(double column, double row) const;
  /// Of the first band. A double holds the values of every type exactly, but for 64-bit integers
  /// above 2^53.
  double At(int column, int row) const;
  /// Bands are counted from 0.
  GridNumber NumberAt(int column, int row, int band) const;

 private:
  Raster rows_;
  std::optional<Samples> numbers_;
  GridType type_;
};

/// Statistics over all finite values except "no data".
struct GridStatistics {
  uint64_t values = 0;
  /// All three are 0 if there are no values.
  double minimum = 0, maximum = 0, mean = 0;
  /// The first two exactly.
  GridNumber least, greatest;
  uint64_t noData = 0;
  /// Number of infinite and NaN values that do not mean "no data".
  uint64_t notFinite = 0;
};

RASTERKIT_EXPORT GridStatistics Summarize(const Grid& grid, const NoData& noData, int band = 0);

}  // namespace rasterkit
