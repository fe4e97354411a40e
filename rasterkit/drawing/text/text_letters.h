#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace rasterkit::detail {

/// A letter of a text and the UTF-16 units that it represents.
struct TextLetter {
  char32_t codePoint = 0;
  size_t at = 0, units = 1;
  /// The letter to draw if no font has this presentation form.
  char32_t plain = 0;
};

/// Splits a text into letters in logical order. An unpaired surrogate is a letter of its own.
std::vector<TextLetter> LettersOf(std::u16string_view text);

/// Replaces Arabic letters by their contextual forms and lam followed by alef by a ligature.
void JoinArabic(std::vector<TextLetter>& letters);

/// Reorders letters into visual order, from left to right: runs of Hebrew and Arabic are reversed,
/// numbers in them are not. `runsLeft` is true if the whole line runs from right to left.
void OrderByDirection(std::vector<TextLetter>& letters, bool runsLeft);

/// Returns the letters of a text in visual order: applies the three functions above, if the text
/// has right-to-left letters.
std::vector<TextLetter> SeenLetters(std::u16string_view text, bool runsLeft);

}  // namespace rasterkit::detail
