#include <algorithm>

#include <rasterkit/drawing/text/text_letters.h>

namespace rasterkit::detail {

std::vector<TextLetter> LettersOf(std::u16string_view text) {
  std::vector<TextLetter> letters;
  letters.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const char16_t unit = text[at];
    const bool isPair = unit >= 0xD800 && unit < 0xDC00 && at + 1 < text.size() &&
                        text[at + 1] >= 0xDC00 && text[at + 1] < 0xE000;
    const char32_t letter =
        isPair ? 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (char32_t{text[at + 1]} - 0xDC00)
               : char32_t{unit};
    letters.push_back({letter, at, isPair ? size_t{2} : size_t{1}, letter});
    at += letters.back().units;
  }
  return letters;
}

std::vector<TextLetter> SeenLetters(std::u16string_view text, bool runsLeft) {
  std::vector<TextLetter> letters = LettersOf(text);
  // Hebrew letters are the first right-to-left letters.
  const bool isPlain =
      std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x590; });
  if (isPlain && !runsLeft) return letters;
  JoinArabic(letters);
  OrderByDirection(letters, runsLeft);
  return letters;
}

}  // namespace rasterkit::detail
