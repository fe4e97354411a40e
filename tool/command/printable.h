#pragma once

#include <string>

namespace rasterkit::tool {

/// Escapes text from a file for printing: control characters, quotes, and bytes that are not valid
/// UTF-8.
std::string Printable(const std::string& text);

}  // namespace rasterkit::tool
