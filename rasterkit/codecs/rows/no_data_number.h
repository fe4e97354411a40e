#pragma once

#include <optional>
#include <string>

#include <rasterkit/raster/number_type.h>

namespace rasterkit::detail {

/// The number that means "not measured" in a grid, from the text of its file.
class NoDataNumber {
 public:
  /// A grid of floats holds the float nearest to the number. "nan" is valid; an empty text and one
  /// that is no number mean nothing.
  NoDataNumber(const std::string& text, NumberType type);

  bool IsKnown() const { return isNan_ || number_.has_value(); }
  bool Is(double value) const { return value == number_ || (isNan_ && value != value); }

 private:
  std::optional<double> number_;
  bool isNan_ = false;
};

}  // namespace rasterkit::detail
