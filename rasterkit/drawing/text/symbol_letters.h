#pragma once

#include <string_view>

namespace rasterkit::detail {

/// Whether it is a font of symbols of which the next function knows the letters.
bool IsSymbolFont(std::string_view faceName);

/// What a font of symbols that is not there would have shown for the byte `code`, as a character of
/// other fonts: Greek and mathematics for "Symbol", marks and arrows for "Wingdings" and its kind,
/// pieces of formulas for "MT Extra"; 0 where no such character is known, or no such font. Names
/// count without regard to case.
char32_t SymbolLetter(std::string_view faceName, unsigned code);

}  // namespace rasterkit::detail
