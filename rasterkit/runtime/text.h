#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <rasterkit/runtime/export.h>

/// Text helpers. Text is UTF-8; byte strings that only look like text are treated byte by byte.
namespace rasterkit {

/// Upper-cases the letters a to z only, whatever the locale.
RASTERKIT_EXPORT std::string UpperCase(std::string_view text);

/// Upper-cases by the locale the process has set (one code point to one code point; bytes that are
/// not UTF-8 stay).
RASTERKIT_EXPORT std::string AnsiUpperCase(std::string_view text);

/// Compares without regard to the case of a to z: negative, 0 or positive.
RASTERKIT_EXPORT int CompareText(std::string_view a, std::string_view b);

/// Without leading and trailing characters from 0 to 32.
RASTERKIT_EXPORT std::string Trim(std::string_view text);

/// The whole number that `text` holds in decimal (blanks around it and a sign allowed).
/// Throws ConversionError, which quotes the text, when it is anything else or does not fit into 32
/// bits.
RASTERKIT_EXPORT int32_t StrToInt(std::string_view text);

/// Number of UTF-16 units of a UTF-8 text: what counts of characters mean throughout.
RASTERKIT_EXPORT size_t Utf16Length(std::string_view text);

/// Units `first` to `first + count - 1` (0-based UTF-16 units) of a UTF-8 text, cut at its end; a
/// surrogate pair that would be halved is left out.
RASTERKIT_EXPORT std::string Utf16Substring(std::string_view text, size_t first, size_t count);

}  // namespace rasterkit
