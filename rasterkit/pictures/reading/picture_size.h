#pragma once

#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Pixels along a side that a size may have.
inline constexpr int kLargestSide = 1'000'000;

/// A size as typed: "800x600", or one side alone ("800x", "x600"). A side of 0 follows from the
/// proportions.
struct RASTERKIT_EXPORT PictureSize {
  int width = 0, height = 0;

  /// Returns both sides for a picture of width x height, each at least 1.
  PictureSize For(int width, int height) const;

  /// Returns both sides of a picture of width x height that is shrunk, if it must be, so that it
  /// fits into this box with its proportions, each at least 1. A side of 0 is no limit.
  PictureSize Around(int width, int height) const;

  /// True if both sides are 1 to 1,000,000.
  bool IsPossible() const;
};

/// Parses a size with sides of 1 to 1,000,000; nothing for any other text.
RASTERKIT_EXPORT std::optional<PictureSize> ParseSize(const std::string& text);

}  // namespace rasterkit
