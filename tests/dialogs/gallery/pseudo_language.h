#pragma once

#include <QWidget>
#include <string>
#include <string_view>
#include <vector>

namespace rasterkit::test {

/// A test language that is demanding for forms: every text is enclosed in «», is 40 percent longer
/// than in English, and has either an accent on each letter or right-to-left letters. Mnemonics and
/// placeholders stay. While an object lives it is the translator, and the application has the
/// layout direction of the script.
class PseudoLanguage {
 public:
  enum class Script { accented, rightToLeft };
  explicit PseudoLanguage(Script script);
  ~PseudoLanguage();
  PseudoLanguage(const PseudoLanguage&) = delete;
  PseudoLanguage& operator=(const PseudoLanguage&) = delete;

  static std::string Translated(std::string_view key, Script script);
};

/// Lists the untranslated texts of a form made in a pseudo language, one line per fault: captions,
/// texts, entries, headings, tips, and what screen readers say. Numbers, keys and the contents of
/// fields have no language.
std::vector<std::string> UntranslatedTexts(const QWidget& form);

}  // namespace rasterkit::test
