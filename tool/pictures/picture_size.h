#pragma once

#include <optional>
#include <string>

namespace rasterkit::tool {

/// A size as typed: "800x600", or one side alone ("800x", "x600"), which keeps the proportions. 0
/// is a side that is left to them.
struct PictureSize {
  int width = 0, height = 0;

  /// Both sides for a picture of width x height, each at least 1.
  PictureSize For(int width, int height) const;

  /// Both sides are from 1 to 1,000,000.
  bool IsPossible() const;
};

/// Nothing for anything else than sizes from 1 to 1,000,000.
std::optional<PictureSize> ParseSize(const std::string& text);

/// For the option: the sentence says what is wrong, or is empty.
std::string CheckSize(const std::string& text);

}  // namespace rasterkit::tool
