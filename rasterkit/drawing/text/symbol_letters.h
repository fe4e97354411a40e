#pragma once

#include <string_view>

namespace rasterkit::detail {

/// Returns whether `SymbolLetter` knows the letters of this font.
bool IsSymbolFont(std::string_view faceName);

/// Returns the character of other fonts that stands for the byte `code` of a missing symbol font:
/// Greek letters and mathematics for "Symbol", signs and arrows for "Wingdings" and similar fonts,
/// parts of formulas for "MT Extra". Returns 0 if the font or the character is unknown. Names are
/// compared without regard to case.
char32_t SymbolLetter(std::string_view faceName, unsigned code);

}  // namespace rasterkit::detail
