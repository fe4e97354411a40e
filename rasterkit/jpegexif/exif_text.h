#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <rasterkit/runtime/export.h>

/// Splitting, formatting and parsing of tag values as text.
namespace rasterkit {

/// Joins the values of a multi-valued tag.
inline constexpr char cDataSep[] = ", ";
/// Separates the pairs of a value-decoding list.
inline constexpr char cDecodeSep[] = ",";
/// Separates a tag's name and its value in text output.
inline constexpr char cDelim[] = " = ";

/// Part of `s` before the first `sub`; all of `s` if there is none or `sub` is empty.
RASTERKIT_EXPORT std::string StrBefore(std::string_view s, std::string_view sub);
/// Part of `s` after the first `sub`; empty if there is none, all of `s` if `sub` is empty.
RASTERKIT_EXPORT std::string StrAfter(std::string_view s, std::string_view sub);
/// Number of times `sub` occurs in `s`, without overlap; 0 for an empty `sub`.
RASTERKIT_EXPORT int StrCount(std::string_view s, std::string_view sub);
/// The n-th field of `s` between separators, counted from 1; empty after the last one, the first
/// one for n below 1.
RASTERKIT_EXPORT std::string StrNth(std::string_view s, std::string_view sub, int n);

/// Reads "num/den" or "whole num/den": (whole·den + num) / den, and 0 when den is 0. "7 1/2"
/// gives 7.5. Throws ConversionError for anything else, a number without "/" included.
RASTERKIT_EXPORT double GetIrrational(std::string_view s);

/// Text that the list `code` ("1:one,2:two") pairs with `value`; empty if there is none.
RASTERKIT_EXPORT std::string DecodeField(std::string_view code, std::string_view value);

namespace detail {

/// Formats `value` with a fixed number of decimals and a point, regardless of the locale.
std::string FixedText(double value, int decimals);

/// Replaces the first number directive of a template by `value`: "%0.1f mm" with 35 gives "35.0
/// mm". Supports the letters d, f, e and g with a precision, and "%%" for a percent sign; anything
/// else is copied.
std::string NumberInTemplate(std::string_view pattern, double value);

}  // namespace detail
}  // namespace rasterkit
