#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// The MD5 digest of bytes. Metadata formats name pieces by it; it protects nothing.
RASTERKIT_EXPORT std::array<uint8_t, 16> Md5(std::span<const uint8_t> bytes);

/// The digest as 32 hexadecimal digits in upper case.
RASTERKIT_EXPORT std::string Md5Text(std::span<const uint8_t> bytes);

}  // namespace rasterkit::detail
