#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace rasterkit {

/// A text of bytes turned into UTF-16, with the steps that belong to it.
struct AnsiText {
  std::u16string text;
  std::vector<double> steps;
};

/// The characters that the bytes stand for in a font of this charset (see LogicalFont); unknown
/// charsets count as western, and a byte that stands for nothing becomes U+FFFD. `steps` has a
/// number for each byte, or none: a character of two bytes gets both, units without a byte get 0.
/// Symbol fonts (charset 2) keep their bytes, as U+F000 and up.
AnsiText DecodeAnsiText(std::span<const uint8_t> bytes, std::span<const double> steps,
                        uint8_t charset);

}  // namespace rasterkit
