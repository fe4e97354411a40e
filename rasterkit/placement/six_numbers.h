#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <rasterkit/placement/affine.h>
#include <rasterkit/runtime/export.h>

/// The text of world files: six numbers, one per line, in the order of Affine.
namespace rasterkit::detail {

/// Six numbers, or why there are none.
struct WorldFileReading {
  std::optional<Affine> affine;
  /// "line 3: "0,5" has a decimal comma; a point is needed"; empty if there is a position.
  std::string reason;
};

/// Reads the first six words; what follows is ignored. A word that is no finite decimal number, a
/// column or row without length, and columns along rows are refused.
RASTERKIT_EXPORT WorldFileReading ParseWorldFile(std::string_view text, bool isCut = false);

/// Reads a world file. Returns nothing if there is no regular file of that name. Throws FileError
/// if it cannot be read.
RASTERKIT_EXPORT std::optional<WorldFileReading> ReadWorldFileAt(const std::string& fileName);

/// True if the numbers are finite and give every pixel an area.
bool PlacesPixels(const Affine& affine);

/// Parses one finite decimal number, without blanks; a "+" in front is allowed.
std::optional<double> ParseDecimal(std::string_view word);

}  // namespace rasterkit::detail
