#include "tool/command/printable.h"

#include <cstdint>
#include <cstdio>

#include <fmt/core.h>

#include <rasterkit/runtime/text.h>

#include "tool/command/json.h"

namespace rasterkit::tool {
namespace {

/// Bytes of the character that a lead byte announces.
size_t AnnouncedBytes(uint8_t lead) {
  if (lead < 0x80) return 1;
  return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
}

/// The code point of a valid UTF-8 sequence.
uint32_t CodePoint(const std::string& sequence) {
  uint32_t point = static_cast<uint8_t>(sequence[0]);
  if (sequence.size() > 1) point &= 0x7Fu >> sequence.size();
  for (size_t i = 1; i < sequence.size(); ++i) {
    point = point << 6 | (static_cast<uint8_t>(sequence[i]) & 0x3Fu);
  }
  return point;
}

bool IsControl(uint32_t point) {
  return point < 0x20 || (point >= 0x7F && point < 0xA0);
}

/// Separators of lines, and marks that turn the direction of the text that follows.
bool IsLayout(uint32_t point) {
  return point == 0x061C || (point >= 0x200E && point <= 0x200F) ||
         (point >= 0x2028 && point <= 0x202E) || (point >= 0x2066 && point <= 0x2069);
}

std::string Escaped(uint32_t point) {
  if (point == '\n') return "\\n";
  if (point == '\r') return "\\r";
  if (point == '\t') return "\\t";
  return point < 0x80 ? fmt::format("\\x{:02x}", point) : fmt::format("\\u{:04x}", point);
}

}  // namespace

std::string Printable(const std::string& text) {
  const std::string quoted = Json(text).Text();
  return OnOneLine(quoted.substr(1, quoted.size() - 2));
}

std::string OnOneLine(const std::string& text) {
  std::string line;
  for (size_t at = 0; at < text.size();) {
    const auto lead = static_cast<uint8_t>(text[at]);
    const std::string sequence = text.substr(at, AnnouncedBytes(lead));
    // Valid text stays as it is.
    if (lead >= 0x80 && Utf8OfBytes(sequence) != sequence) {
      line += fmt::format("\\x{:02x}", lead);
      ++at;
      continue;
    }
    const uint32_t point = CodePoint(sequence);
    line += IsControl(point) || IsLayout(point) ? Escaped(point) : sequence;
    at += sequence.size();
  }
  return line;
}

void PrintMessage(const std::string& text) {
  fmt::print(stderr, "rasterkit: {}\n", OnOneLine(text));
}

}  // namespace rasterkit::tool
