#pragma once

#include <string_view>

namespace rasterkit::detail {

/// What a font of symbols that is not there would have shown for the byte `code`, as a character of
/// other fonts: Greek and mathematics for "Symbol", marks and arrows for "Wingdings"; 0 where no
/// such character is known. Names count without regard to case.
char32_t SymbolLetter(std::string_view faceName, unsigned code);

}  // namespace rasterkit::detail
