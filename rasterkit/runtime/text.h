#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <rasterkit/runtime/export.h>

/// Text helpers. Text is UTF-8; other byte strings are processed byte by byte.
namespace rasterkit {

/// Converts the letters a to z to upper case, independent of the locale.
RASTERKIT_EXPORT std::string UpperCase(std::string_view text);

/// Converts the letters A to Z to lower case, independent of the locale.
RASTERKIT_EXPORT std::string LowerCase(std::string_view text);

/// Converts to upper case by the locale of the process, one code point to one code point. Bytes
/// that are not UTF-8 stay unchanged.
RASTERKIT_EXPORT std::string AnsiUpperCase(std::string_view text);

/// Compares, ignoring the case of a to z: negative, 0 or positive.
RASTERKIT_EXPORT int CompareText(std::string_view a, std::string_view b);

/// Removes leading and trailing characters from 0 to 32.
RASTERKIT_EXPORT std::string Trim(std::string_view text);

/// Parses a decimal integer; a sign and surrounding blanks are allowed. Throws ConversionError,
/// which quotes the text, for anything else and for numbers that do not fit into 32 bits.
RASTERKIT_EXPORT int32_t StrToInt(std::string_view text);

/// Converts bytes of an unknown encoding to UTF-8: valid UTF-8 stays as it is; any other text is
/// read as Latin-1 as a whole, so that every byte above 127 becomes one letter.
RASTERKIT_EXPORT std::string Utf8OfBytes(std::string_view bytes);

/// Counts the UTF-16 units of a UTF-8 text. All character counts of the library are such units.
RASTERKIT_EXPORT size_t Utf16Length(std::string_view text);

/// Extracts the UTF-16 units `first` to `first + count - 1` (from 0) of a UTF-8 text, cut at its
/// end. A surrogate pair that is only half inside is skipped.
RASTERKIT_EXPORT std::string Utf16Substring(std::string_view text, size_t first, size_t count);

}  // namespace rasterkit
