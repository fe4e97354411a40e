#pragma once

#include <optional>
#include <string>

#include <rasterkit/bands/stage/filter.h>

namespace rasterkit::tool {

/// Reads what stands in uncovered corners: a color, "transparent", "nodata", "edge" or "auto".
/// Nothing for any other text.
std::optional<Fill> ParseFill(const std::string& text);

/// Reads "nearest", "linear" or "area"; automatic for any other text.
Filter FilterOf(const std::string& name);

}  // namespace rasterkit::tool
