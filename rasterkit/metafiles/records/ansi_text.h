#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// A text converted to UTF-16, with the advances of its units.
struct AnsiText {
  std::u16string text;
  std::vector<double> steps;
};

/// Decodes the text of a font with this charset (see LogicalFont). An unknown charset is decoded as
/// Western; an invalid byte becomes U+FFFD. `steps` has one advance per byte or is empty: a
/// character of two bytes gets the sum of both, a unit without a byte gets 0. The bytes of symbol
/// fonts (charset 2) become U+F000 and up.
AnsiText DecodeAnsiText(std::span<const uint8_t> bytes, std::span<const double> steps,
                        uint8_t charset);

/// Loads the tables of all charsets for good. For a process that cannot open files later.
RASTERKIT_EXPORT void LoadAnsiTables();

}  // namespace rasterkit
