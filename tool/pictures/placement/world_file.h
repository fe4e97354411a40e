#pragma once

#include <array>
#include <optional>
#include <string>

namespace rasterkit::tool {

/// A text file beside a picture that says where on the map it lies.
struct WorldFile {
  std::string file;
  /// In the file's order: x per column, y per column, x per row, y per row, x and y of the first
  /// pixel's centre.
  std::array<double, 6> affine;
  /// Some number was written as "0,5".
  bool hasDecimalCommas = false;
};

/// The world file that belongs to the picture by name ("plan.png": "plan.PGW" or "plan.pgw"), if
/// there is one.
std::optional<std::string> FindWorldFile(const std::string& picture);

/// The six numbers, whatever follows them; nothing when the file does not begin with six.
std::optional<WorldFile> ReadWorldFile(const std::string& worldFile);

}  // namespace rasterkit::tool
