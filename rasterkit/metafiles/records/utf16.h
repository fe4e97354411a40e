#pragma once

#include <string>
#include <string_view>

namespace rasterkit::detail {

/// UTF-8 of UTF-16 units; a half of a pair without its other half becomes U+FFFD.
std::string Utf8FromUtf16(std::u16string_view units);

/// UTF-16 of UTF-8; a byte that belongs to no character becomes U+FFFD.
std::u16string Utf16FromUtf8(std::string_view text);

}  // namespace rasterkit::detail
