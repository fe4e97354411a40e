#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Decoding UTF-8; internal to this folder.
namespace rasterkit::detail {

/// One step through a text: a code point, or one invalid byte.
struct Utf8Step {
  char32_t codePoint;
  size_t bytes;
  bool valid;

  /// UTF-16 units of this step; an invalid byte counts as one.
  size_t Utf16Units() const { return valid && codePoint > 0xFFFF ? 2 : 1; }
};

/// Decodes the step at `position`, which must be inside `text`. Overlong forms, surrogates and
/// values above 0x10FFFF are invalid bytes.
Utf8Step NextUtf8(std::string_view text, size_t position);

/// Appends a code point up to 0x10FFFF.
void AppendUtf8(std::string& text, char32_t codePoint);

}  // namespace rasterkit::detail
