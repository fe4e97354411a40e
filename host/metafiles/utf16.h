#pragma once

#include <string>
#include <string_view>

namespace rasterkit::detail {

/// UTF-8 of UTF-16 units; a half of a pair without its other half becomes U+FFFD.
std::string Utf8FromUtf16(std::u16string_view units);

}  // namespace rasterkit::detail
