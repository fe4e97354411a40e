#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include <rasterkit/codecs/rows/byte_marks.h>

namespace rasterkit::detail {

/// True for a raw codestream: its start marker and the marker of its sizes.
inline bool IsJp2Codestream(std::span<const uint8_t> bytes) {
  using std::string_view_literals::operator""sv;
  return StartsWith(bytes, "\xFF\x4F\xFF\x51"sv);
}

/// True for a file of boxes or a raw codestream.
inline bool IsJp2(std::span<const uint8_t> bytes) {
  using std::string_view_literals::operator""sv;
  return StartsWith(bytes, "\0\0\0\x0CjP  \r\n\x87\n"sv) || IsJp2Codestream(bytes);
}

}  // namespace rasterkit::detail
