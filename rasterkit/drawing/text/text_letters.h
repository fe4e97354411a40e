#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace rasterkit::detail {

/// A letter of a text, and the units of it that it stands for.
struct TextLetter {
  char32_t codePoint = 0;
  size_t at = 0, units = 1;
  /// What to draw where no font has the letter's form.
  char32_t plain = 0;
};

/// Letters in the order of the text. Half of a pair of units is a letter of its own.
std::vector<TextLetter> LettersOf(std::u16string_view text);

/// Arabic letters become the forms that they have beside each other; lam and alef become one.
void JoinArabic(std::vector<TextLetter>& letters);

/// Puts letters into the order in which they are seen from the left: runs of Hebrew and Arabic from
/// the right to the left, numbers in them not. `runsLeft`: so does the line as a whole.
void OrderByDirection(std::vector<TextLetter>& letters, bool runsLeft);

/// Letters as they are seen from the left: the three above, where the text has any such letters.
std::vector<TextLetter> SeenLetters(std::u16string_view text, bool runsLeft);

}  // namespace rasterkit::detail
