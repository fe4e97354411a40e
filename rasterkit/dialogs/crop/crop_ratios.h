#pragma once

#include <string>
#include <vector>

#include <rasterkit/dialogs/bitmapframe/cut_shape.h>
#include <rasterkit/dialogs/crop/crop_units.h>

namespace rasterkit {

enum class RatioKind {
  any,
  asPicture,
  square,
  isoPortrait,
  isoLandscape,
  fourToThree,
  threeToTwo,
  sixteenToNine,
  /// Two numbers that the user types.
  typed,
  /// A sheet of paper at a scale of the map.
  paper
};

inline constexpr int kSmallestPaper = 4, kLeastScale = 1, kGreatestScale = 100'000'000;
inline constexpr double kGreatestTypedSide = 1'000'000;

/// The proportion that the user chose for the rectangle.
struct CropRatio {
  RatioKind kind = RatioKind::any;
  /// Width and height are exchanged.
  bool isSwapped = false;
  double typedWidth = 5, typedHeight = 4;
  /// Number of the ISO A format, 0 to kSmallestPaper; landscape unless swapped.
  int paper = 3;
  /// 1 : scale.
  double scale = 500;

  friend bool operator==(const CropRatio&, const CropRatio&) = default;
};

/// Whether the picture has what a kind needs: paper needs a position in a unit of length.
bool KnowsRatio(const CropFacts& facts, RatioKind kind);

/// What the sides of the rectangle must be; anything where the kind is not known.
CutShape ShapeOf(const CropRatio& ratio, const CropFacts& facts);

/// Width and height exchanged. Nothing to exchange: the same.
CropRatio Swapped(const CropRatio& ratio);

/// A line for the settings: "iso-portrait", "typed swapped 5 4 3 500".
std::string SettingOf(const CropRatio& ratio);

/// Reads such a line; what is missing or out of range stays as usual.
CropRatio RatioOfSetting(const std::string& setting);

}  // namespace rasterkit
