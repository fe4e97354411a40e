#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace rasterkit::detail {

/// Parses a text. Throws FormatError for faults of syntax, with line and column ("line 3, column 5:
/// ..."), for objects and lists that are nested deeper than 8 and, with the path of its object, for
/// a key that stands twice.
nlohmann::json ParseRecipeJson(std::string_view text);

/// A key as a part of a path: "/" and "~" as "~1" and "~0", cut if it is long, on one line.
std::string PathPart(std::string_view key);

/// A value for a message: JSON on one line, cut if it is long.
std::string ShownValue(const nlohmann::json& value);

}  // namespace rasterkit::detail
