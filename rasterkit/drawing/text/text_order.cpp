#include <algorithm>
#include <cstdint>

#include <rasterkit/drawing/text/text_letters.h>

/// Bidirectional order: letters with a strong direction form runs, neutral characters between two
/// letters of one direction join them, all others take the direction of the line.
namespace rasterkit::detail {
namespace {

enum class Kind : uint8_t { right, left, number, neutral, mark };

bool IsIn(char32_t letter, char32_t first, char32_t last) {
  return letter >= first && letter <= last;
}

Kind KindOf(char32_t letter) {
  if (IsIn(letter, U'0', U'9') || IsIn(letter, 0x660, 0x669) || IsIn(letter, 0x6F0, 0x6F9)) {
    return Kind::number;
  }
  if (IsIn(letter, 0x591, 0x5BD) || IsIn(letter, 0x5BF, 0x5C7) || IsIn(letter, 0x64B, 0x65F) ||
      IsIn(letter, 0x300, 0x36F)) {
    return Kind::mark;
  }
  if (IsIn(letter, 0x590, 0x8FF) || IsIn(letter, 0xFB1D, 0xFDFF) || IsIn(letter, 0xFE70, 0xFEFC)) {
    return Kind::left;
  }
  if (letter < 0xC0) {
    const bool isLetter = IsIn(letter, U'A', U'Z') || IsIn(letter, U'a', U'z') || letter == 0xAA ||
                          letter == 0xB5 || letter == 0xBA;
    return isLetter ? Kind::right : Kind::neutral;
  }
  // Punctuation, symbols, arrows and spaces.
  const bool isNeutral = IsIn(letter, 0x2000, 0x2BFF) || IsIn(letter, 0x3000, 0x3004) ||
                         letter == 0xD7 || letter == 0xF7;
  return isNeutral ? Kind::neutral : Kind::right;
}

/// Brackets are mirrored in right-to-left text.
char32_t Mirrored(char32_t letter) {
  constexpr std::u32string_view kPairs = U"()[]{}<>«»‹›≤≥";
  const size_t at = kPairs.find(letter);
  return at == std::u32string_view::npos ? letter : kPairs[at ^ 1];
}

/// Even levels run to the right, odd ones to the left; a higher level is nested in a lower one.
std::vector<uint8_t> LevelsOf(const std::vector<TextLetter>& letters, bool runsLeft) {
  const Kind line = runsLeft ? Kind::left : Kind::right;
  std::vector<Kind> kinds;
  kinds.reserve(letters.size());
  Kind strong = line;
  for (const TextLetter& letter : letters) {
    Kind kind = KindOf(letter.codePoint);
    if (kind == Kind::mark) kind = kinds.empty() ? Kind::neutral : kinds.back();
    if (kind == Kind::right || kind == Kind::left) strong = kind;
    if (kind == Kind::number && strong == Kind::right) kind = Kind::right;
    kinds.push_back(kind);
  }
  // Next to a neutral character, a number counts as part of the run that surrounds it.
  const auto side = [](Kind kind) { return kind == Kind::number ? Kind::left : kind; };
  for (size_t i = 0; i < kinds.size();) {
    size_t end = i;
    while (end < kinds.size() && kinds[end] == Kind::neutral) ++end;
    if (end > i) {
      const Kind before = i == 0 ? line : side(kinds[i - 1]);
      const Kind after = end == kinds.size() ? line : side(kinds[end]);
      std::fill(kinds.begin() + static_cast<ptrdiff_t>(i),
                kinds.begin() + static_cast<ptrdiff_t>(end), before == after ? before : line);
    }
    i = end + (end == i ? 1 : 0);
  }
  std::vector<uint8_t> levels;
  levels.reserve(kinds.size());
  for (const Kind kind : kinds) {
    levels.push_back(kind == Kind::left ? 1 : kind == Kind::number || runsLeft ? 2 : 0);
  }
  return levels;
}

/// Reverses every run of letters of at least this level.
void TurnRuns(std::vector<TextLetter>& letters, std::vector<uint8_t>& levels, uint8_t level) {
  for (size_t i = 0; i < letters.size();) {
    size_t end = i;
    while (end < letters.size() && levels[end] >= level) ++end;
    std::reverse(letters.begin() + static_cast<ptrdiff_t>(i),
                 letters.begin() + static_cast<ptrdiff_t>(end));
    std::reverse(levels.begin() + static_cast<ptrdiff_t>(i),
                 levels.begin() + static_cast<ptrdiff_t>(end));
    i = end + (end == i ? 1 : 0);
  }
}

}  // namespace

void OrderByDirection(std::vector<TextLetter>& letters, bool runsLeft) {
  std::vector<uint8_t> levels = LevelsOf(letters, runsLeft);
  for (size_t i = 0; i < letters.size(); ++i) {
    if (levels[i] != 1) continue;
    letters[i].codePoint = Mirrored(letters[i].codePoint);
    letters[i].plain = Mirrored(letters[i].plain);
  }
  TurnRuns(letters, levels, 2);
  TurnRuns(letters, levels, 1);
}

}  // namespace rasterkit::detail
