#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Walking through UTF-8, internal to the room.
namespace rasterkit::detail {

/// One step through a text: a code point, or one byte that belongs to none.
struct Utf8Step {
  char32_t codePoint;
  size_t bytes;
  bool valid;

  /// UTF-16 units of this step; a stray byte counts as one.
  size_t Utf16Units() const { return valid && codePoint > 0xFFFF ? 2 : 1; }
};

/// The step at `position`, which must lie inside `text`. Overlong forms, surrogates and values
/// above 0x10FFFF are stray bytes.
Utf8Step NextUtf8(std::string_view text, size_t position);

/// Appends a code point up to 0x10FFFF.
void AppendUtf8(std::string& text, char32_t codePoint);

}  // namespace rasterkit::detail
