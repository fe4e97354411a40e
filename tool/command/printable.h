#pragma once

#include <string>

namespace rasterkit::tool {

/// Text out of a file with escapes for what would steer the terminal, for quotes, and for bytes
/// that are no UTF-8.
std::string Printable(const std::string& text);

}  // namespace rasterkit::tool
