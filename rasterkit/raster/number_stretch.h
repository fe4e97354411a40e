#pragma once

namespace rasterkit {

/// How numbers become gray or color values of 8 bits where a picture must be looked at or a file
/// holds no more. "Not measured" never counts for the range and becomes white.
struct NumberStretch {
  enum class Kind {
    /// A single band of more than 8 bits: as `minMax`; colors of 16 bits: as `full`.
    automatic,
    /// The least number of the picture is black, the greatest white.
    minMax,
    /// The same without the lowest and the highest `percent` of the numbers.
    percent,
    /// `least` is black, `greatest` white; numbers beyond are cut off.
    fixed,
    /// The range of the number type; of floating-point numbers 0 to 1.
    full
  };
  Kind kind = Kind::automatic;
  /// 0 to less than 50.
  double percent = 2;
  double least = 0, greatest = 255;
  friend bool operator==(const NumberStretch&, const NumberStretch&) = default;
};

}  // namespace rasterkit
