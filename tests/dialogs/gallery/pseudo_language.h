#pragma once

#include <QWidget>
#include <string>
#include <string_view>
#include <vector>

namespace rasterkit::test {

/// A language that nobody speaks and that is hard on forms: every text stands in «», is 40 percent
/// longer than in English, and has either an accent on each letter or letters that run from right
/// to left. Mnemonics and places for values stay. While one lives it is the translator, and the
/// application is laid out as the script runs.
class PseudoLanguage {
 public:
  enum class Script { accented, rightToLeft };
  explicit PseudoLanguage(Script script);
  ~PseudoLanguage();
  PseudoLanguage(const PseudoLanguage&) = delete;
  PseudoLanguage& operator=(const PseudoLanguage&) = delete;

  static std::string Translated(std::string_view key, Script script);
};

/// What a form that was made in a pseudo language shows in another one, a line a fault: captions,
/// texts, entries, headings, tips, and what screen readers say. Numbers, keys and the contents of
/// fields have no language.
std::vector<std::string> UntranslatedTexts(const QWidget& form);

}  // namespace rasterkit::test
