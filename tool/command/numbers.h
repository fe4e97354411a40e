#pragma once

#include <optional>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// A finite number that is the whole text, with a point whatever the user's language; nothing for
/// anything else.
std::optional<double> ParseNumber(const std::string& text);

/// Numbers with commas between them; nothing when one of them is none.
std::optional<std::vector<double>> ParseNumbers(const std::string& text);

}  // namespace rasterkit::tool
