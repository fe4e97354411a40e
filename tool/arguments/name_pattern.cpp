#include "tool/arguments/name_pattern.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

#include <fmt/format.h>

namespace rasterkit::tool {
namespace {

constexpr int kMostDigits = 9;

enum class FieldKind { name, stem, ext, verb, page, number };

struct FieldName {
  std::string_view text;
  FieldKind kind;
  bool isNumber;
};
constexpr FieldName kFields[] = {
    {"stem", FieldKind::stem, false}, {"name", FieldKind::name, false},
    {"ext", FieldKind::ext, false},   {"verb", FieldKind::verb, false},
    {"page", FieldKind::page, true},  {"number", FieldKind::number, true}};

struct Field {
  FieldKind kind = FieldKind::name;
  int digits = 1;
};

/// Reads what stands in the braces; nothing if it is no field.
std::optional<Field> ParseField(std::string_view text) {
  const size_t colon = text.find(':');
  const std::string_view name = text.substr(0, colon);
  const auto* const known = std::find_if(std::begin(kFields), std::end(kFields),
                                         [&](const FieldName& one) { return one.text == name; });
  if (known == std::end(kFields)) return std::nullopt;
  if (colon == std::string_view::npos) return Field{known->kind, 1};
  const std::string_view digits = text.substr(colon + 1);
  const bool isDigit = digits.size() == 1 && digits[0] >= '1' && digits[0] <= '0' + kMostDigits;
  if (!known->isNumber || !isDigit) return std::nullopt;
  return Field{known->kind, digits[0] - '0'};
}

std::string ValueOf(const Field& field, const NameFields& fields) {
  switch (field.kind) {
    case FieldKind::name:
      return fields.name;
    case FieldKind::stem:
      return fields.stem;
    case FieldKind::ext:
      return fields.ext;
    case FieldKind::verb:
      return fields.verb;
    case FieldKind::page:
      return fmt::format("{:0{}}", fields.page, field.digits);
    case FieldKind::number:
      return fmt::format("{:0{}}", fields.number, field.digits);
  }
  return {};
}

std::string KnownFields() {
  std::string known;
  for (const FieldName& field : kFields) {
    known += fmt::format("{}{{{}}}", known.empty() ? "" : ", ", field.text);
  }
  return known + ", {page:4}, {number:4}";
}

/// Calls `text` for each letter outside of fields and `field` for what stands in braces. Returns
/// false for a brace without its partner.
template <typename OnLetter, typename OnField>
bool Walk(std::string_view pattern, OnLetter letter, OnField field) {
  for (size_t at = 0; at < pattern.size(); ++at) {
    const char one = pattern[at];
    const bool isDouble = at + 1 < pattern.size() && pattern[at + 1] == one;
    if (one != '{' && one != '}') {
      letter(one);
    } else if (isDouble) {
      letter(one);
      ++at;
    } else {
      const size_t end = one == '{' ? pattern.find_first_of("{}", at + 1) : std::string_view::npos;
      if (end == std::string_view::npos || pattern[end] != '}') return false;
      field(pattern.substr(at + 1, end - at - 1));
      at = end;
    }
  }
  return true;
}

}  // namespace

std::string CheckNamePattern(const std::string& pattern) {
  if (pattern.find('/') != std::string::npos) {
    return "a name has no '/'; the outputs stay in the folder of --out-dir, not '" + pattern + "'";
  }
  std::string unknown;
  bool isUnknown = false;
  const auto check = [&](std::string_view text) {
    if (ParseField(text) || isUnknown) return;
    isUnknown = true;
    unknown = text;
  };
  const bool isWhole = Walk(
      pattern, [](char) {}, check);
  if (isUnknown) {
    return fmt::format("unknown field {{{}}}; known ones are {}", unknown, KnownFields());
  }
  return isWhole ? std::string()
                 : "a brace without its partner ('{{' stands for a brace) in '" + pattern + "'";
}

std::string NameByPattern(const std::string& pattern, const NameFields& fields) {
  std::string name;
  Walk(
      pattern, [&](char letter) { name += letter; },
      [&](std::string_view text) { name += ValueOf(ParseField(text).value_or(Field()), fields); });
  return name;
}

}  // namespace rasterkit::tool
