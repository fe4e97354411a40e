#include <cstdint>

#include <rasterkit/runtime/utf8.h>

namespace rasterkit::detail {
namespace {

struct Lead {
  size_t bytes;
  char32_t bits;
  char32_t least;
};

Lead ReadLead(uint8_t byte) {
  if (byte < 0x80) return {1, byte, 0};
  if (byte >= 0xC0 && byte < 0xE0) return {2, byte & 0x1Fu, 0x80};
  if (byte >= 0xE0 && byte < 0xF0) return {3, byte & 0x0Fu, 0x800};
  if (byte >= 0xF0 && byte < 0xF8) return {4, byte & 0x07u, 0x10000};
  return {0, 0, 0};
}

bool IsScalarValue(char32_t codePoint) {
  return codePoint <= 0x10FFFF && (codePoint < 0xD800 || codePoint > 0xDFFF);
}

}  // namespace

Utf8Step NextUtf8(std::string_view text, size_t position) {
  const auto byteAt = [&](size_t i) { return static_cast<uint8_t>(text[position + i]); };
  const Utf8Step stray{byteAt(0), 1, false};
  const Lead lead = ReadLead(byteAt(0));
  if (lead.bytes == 0 || lead.bytes > text.size() - position) return stray;
  char32_t codePoint = lead.bits;
  for (size_t i = 1; i < lead.bytes; ++i) {
    if ((byteAt(i) & 0xC0) != 0x80) return stray;
    codePoint = codePoint << 6 | (byteAt(i) & 0x3Fu);
  }
  if (codePoint < lead.least || !IsScalarValue(codePoint)) return stray;
  return {codePoint, lead.bytes, true};
}

void AppendUtf8(std::string& text, char32_t codePoint) {
  const auto append = [&](char32_t byte) { text += static_cast<char>(byte); };
  const auto appendTail = [&](int shift) { append(0x80 | (codePoint >> shift & 0x3F)); };
  if (codePoint < 0x80) {
    append(codePoint);
  } else if (codePoint < 0x800) {
    append(0xC0 | codePoint >> 6);
    appendTail(0);
  } else if (codePoint < 0x10000) {
    append(0xE0 | codePoint >> 12);
    appendTail(6);
    appendTail(0);
  } else {
    append(0xF0 | codePoint >> 18);
    appendTail(12);
    appendTail(6);
    appendTail(0);
  }
}

}  // namespace rasterkit::detail
