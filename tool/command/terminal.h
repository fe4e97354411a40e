#pragma once

#include <cstddef>

namespace rasterkit::tool {

/// Columns for text on stdout: if stdout is a terminal, those of the variable COLUMNS or else of
/// the terminal itself, at least 40; otherwise 80.
size_t OutputColumns();

}  // namespace rasterkit::tool
