#pragma once

#include <string>

namespace rasterkit::tool {

/// Check of options that are sizes. Says what is wrong, or returns an empty string.
std::string CheckSize(const std::string& text);

}  // namespace rasterkit::tool
