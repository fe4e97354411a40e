#pragma once

#include <optional>
#include <string>
#include <vector>

namespace rasterkit::tool {

/// Parses a finite number with a decimal point, in every locale; nothing for any other text.
std::optional<double> ParseNumber(const std::string& text);

/// Parses numbers with commas between them; nothing if one of them is invalid.
std::optional<std::vector<double>> ParseNumbers(const std::string& text);

/// Parses a percentage from 0 on, "50%"; nothing for any other text.
std::optional<double> ParsePercent(const std::string& text);

}  // namespace rasterkit::tool
