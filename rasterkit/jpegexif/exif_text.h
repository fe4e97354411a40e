#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <rasterkit/runtime/export.h>

/// Splitting, formatting and reading of the texts in which tag values travel.
namespace rasterkit {

/// Joins the values of a multi-valued tag.
inline constexpr char cDataSep[] = ", ";
/// Separates the pairs of a value-decoding list.
inline constexpr char cDecodeSep[] = ",";
/// Between a tag's name and its value in text output.
inline constexpr char cDelim[] = " = ";

/// The part of `s` before the first `sub`; all of it when there is none or `sub` is empty.
RASTERKIT_EXPORT std::string StrBefore(std::string_view s, std::string_view sub);
/// The part of `s` behind the first `sub`; nothing when there is none, all of `s` when `sub` is
/// empty.
RASTERKIT_EXPORT std::string StrAfter(std::string_view s, std::string_view sub);
/// How often `sub` occurs in `s`, without overlap; 0 for an empty `sub`.
RASTERKIT_EXPORT int StrCount(std::string_view s, std::string_view sub);
/// The n-th field of `s` between separators, counted from 1; empty behind the last, the first for n
/// below 1.
RASTERKIT_EXPORT std::string StrNth(std::string_view s, std::string_view sub, int n);

/// Reads "num/den" or "whole num/den": (whole·den + num) / den, and 0 when den is 0. "7 1/2"
/// gives 7.5. Throws ConversionError for anything else, a number without "/" included.
RASTERKIT_EXPORT double GetIrrational(std::string_view s);

/// The text that the list `code` ("1:one,2:two") pairs with `value`; empty when it names none.
RASTERKIT_EXPORT std::string DecodeField(std::string_view code, std::string_view value);

namespace detail {

/// `value` with a fixed number of decimals and a point, whatever the locale.
std::string FixedText(double value, int decimals);

/// Puts `value` in place of the first number directive of a template: "%0.1f mm" with 35 gives
/// "35.0 mm". Known are the letters d, f, e and g with a precision; "%%" stands for a percent sign;
/// anything else is copied.
std::string NumberInTemplate(std::string_view pattern, double value);

}  // namespace detail
}  // namespace rasterkit
