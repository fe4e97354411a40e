#pragma once

#include <span>
#include <string_view>

namespace rasterkit::test {

/// A phrase to avoid in prose, and what to say instead.
struct WordRule {
  /// Lower-case text that every match contains; lines without it are skipped quickly.
  std::string_view needle;
  /// ECMAScript pattern, matched without regard to case. Empty: the needle as it stands.
  std::string_view pattern;
  std::string_view say;
};

/// Phrases that readers stumble over, and British spellings.
std::span<const WordRule> WordRules();

}  // namespace rasterkit::test
