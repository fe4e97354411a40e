#include "tests/docs/find_words.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <regex>
#include <sstream>

#include "tests/docs/word_list.h"

namespace rasterkit::test {
namespace {

/// A rule with its pattern compiled once.
struct CompiledRule {
  const WordRule* rule;
  std::regex pattern;
};

const std::vector<CompiledRule>& CompiledRules() {
  static const std::vector<CompiledRule> compiled = [] {
    std::vector<CompiledRule> rules;
    for (const WordRule& rule : WordRules()) {
      const std::string_view pattern = rule.pattern.empty() ? rule.needle : rule.pattern;
      rules.push_back({&rule, std::regex(pattern.begin(), pattern.end(), std::regex::icase)});
    }
    return rules;
  }();
  return compiled;
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

/// A line without its indentation and comment mark, as the end of the sentence before it.
std::string_view Continuation(std::string_view line) {
  const size_t first = line.find_first_not_of(" \t/#*>");
  return first == std::string_view::npos ? std::string_view() : line.substr(first);
}

bool IsTokenCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) ||
         std::string_view("_-./").find(c) != std::string_view::npos;
}

/// Whether the match is part of a picture's file name ("grey-8bit.png").
bool IsInFileName(std::string_view line, size_t position) {
  static constexpr std::array<std::string_view, 14> kExtensions = {
      ".bmp", ".emf", ".gif", ".ico",  ".jpeg", ".jpg", ".pdf",
      ".pgw", ".png", ".svg", ".tiff", ".tif",  ".ts",  ".wmf"};
  size_t end = position;
  while (end < line.size() && IsTokenCharacter(line[end])) ++end;
  const std::string_view token = line.substr(0, end);
  return std::any_of(kExtensions.begin(), kExtensions.end(), [&](std::string_view extension) {
    return token.ends_with(extension) && end - position >= extension.size();
  });
}

/// Whether the match is a whole word in quotes or code marks.
bool IsKey(std::string_view line, size_t position, size_t length) {
  const size_t end = position + length;
  if (position == 0 || end >= line.size() || line[position - 1] != line[end]) return false;
  return line[end] == '"' || line[end] == '`';
}

}  // namespace

std::vector<Finding> FindWords(std::string_view text) {
  std::vector<std::string> lines;
  std::istringstream in{std::string(text)};
  for (std::string line; std::getline(in, line);) lines.push_back(std::move(line));

  std::vector<Finding> findings;
  for (size_t i = 0; i < lines.size(); ++i) {
    std::string joined = lines[i];
    if (i + 1 < lines.size()) joined.append(" ").append(Continuation(lines[i + 1]));
    const std::string lower = Lower(joined);
    for (const CompiledRule& compiled : CompiledRules()) {
      const size_t needle = lower.find(compiled.rule->needle);
      if (needle == std::string::npos || needle > lines[i].size()) continue;
      for (std::sregex_iterator match(lower.begin(), lower.end(), compiled.pattern), end;
           match != end; ++match) {
        const auto position = static_cast<size_t>(match->position());
        const auto length = static_cast<size_t>(match->length());
        if (position >= lines[i].size() || IsInFileName(joined, position)) continue;
        if (IsKey(joined, position, length)) continue;
        findings.push_back(
            {i + 1, joined.substr(position, length), std::string(compiled.rule->say)});
      }
    }
  }
  return findings;
}

}  // namespace rasterkit::test
