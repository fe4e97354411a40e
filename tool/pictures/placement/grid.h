#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <rasterkit/codecs/rows/imaging_frame.h>
#include <rasterkit/raster/raster.h>

namespace rasterkit::tool {

/// How a grid's values lie in its rows.
enum class GridType { float32, float16, uint16, int16 };

/// Nothing for a pixel format of colours.
std::optional<GridType> GridTypeOf(WICPixelFormat format);

/// "float32", "float16", "uint16", "int16".
const char* GridTypeName(GridType type);

/// The one value that stands for "nothing was measured here".
class NoData {
 public:
  /// No such value.
  NoData() = default;
  /// The text of a file's tag. A float grid holds the float nearest to the number; a number that
  /// the type cannot hold stands for nothing in it. "nan" is one as well.
  NoData(const std::string& text, GridType type);

  bool Is(double value) const { return value == value_ || (isNan_ && value != value); }
  /// The text is there, but it is no number.
  bool IsUnreadable() const { return isUnreadable_; }

 private:
  std::optional<double> value_;
  bool isNan_ = false;
  bool isUnreadable_ = false;
};

/// Rows of numbers as a file holds them.
class Grid {
 public:
  /// `rows` has 32 bits a pixel for float32, else 16.
  Grid(Raster rows, GridType type) : rows_(std::move(rows)), type_(type) {}

  int Width() const { return rows_.Width(); }
  int Height() const { return rows_.Height(); }
  GridType Type() const { return type_; }
  bool Holds(double column, double row) const;
  /// Every type's values are exact in a double.
  double At(int column, int row) const;

 private:
  Raster rows_;
  GridType type_;
};

/// Over all values that are finite and not the one for "no data".
struct GridStatistics {
  uint64_t values = 0;
  /// Without values all three are 0.
  double minimum = 0, maximum = 0, mean = 0;
  uint64_t noData = 0;
  /// Infinite values and NaNs that do not stand for "no data".
  uint64_t notFinite = 0;
};

GridStatistics Summarise(const Grid& grid, const NoData& noData);

}  // namespace rasterkit::tool
