#pragma once

#include <array>
#include <optional>
#include <string>

namespace rasterkit::tool {

/// A text file beside a picture that states its map position.
struct WorldFile {
  std::string file;
  /// In the order of the file: x per column, y per column, x per row, y per row, x and y of the
  /// center of the first pixel.
  std::array<double, 6> affine;
  /// True if a number was written with a decimal comma ("0,5").
  bool hasDecimalCommas = false;
};

/// Finds the world file that belongs to the picture by name ("plan.png": "plan.PGW" or "plan.pgw"):
/// a regular file or a link to one.
std::optional<std::string> FindWorldFile(const std::string& picture);

/// Reads the six numbers and ignores what follows; nothing if the file does not begin with six
/// numbers.
std::optional<WorldFile> ReadWorldFile(const std::string& worldFile);

}  // namespace rasterkit::tool
