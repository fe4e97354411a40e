#pragma once

#include <string>
#include <string_view>

namespace rasterkit::detail {

/// Converts UTF-16 to UTF-8; an unpaired surrogate becomes U+FFFD.
std::string Utf8FromUtf16(std::u16string_view units);

/// Converts UTF-8 to UTF-16; an invalid byte becomes U+FFFD.
std::u16string Utf16FromUtf8(std::string_view text);

}  // namespace rasterkit::detail
