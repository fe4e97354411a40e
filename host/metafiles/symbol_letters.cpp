#include <algorithm>
#include <iterator>

#include <rasterkit/host/metafiles/symbol_letters.h>

namespace rasterkit::detail {
namespace {

/// From code 0x20.
constexpr std::u32string_view kGreekLow =
    U" !∀#∃%&∋()∗+,−./0123456789:;<=>?"
    U"≅ΑΒΧΔΕΦΓΗΙϑΚΛΜΝΟΠΘΡΣΤΥςΩΞΨΖ[∴]⊥_"
    U"‾αβχδεφγηιϕκλμνοπθρστυϖωξψζ{|}∼";
/// From code 0xA0.
constexpr std::u32string_view kGreekHigh =
    U"€ϒ′≤⁄∞ƒ♣♦♥♠↔←↑→↓°±″≥×∝∂•÷≠≡≈…⏐⎯↵"
    U"ℵℑℜ℘⊗⊕∅∩∪⊃⊇⊄⊂⊆∈∉∠∇®©™∏√⋅¬∧∨⇔⇐⇑⇒⇓"
    U"◊〈®©™∑⎛⎜⎝⎡⎢⎣⎧⎨⎩⎪€〉∫⌠⎮⌡⎞⎟⎠⎤⎥⎦⎫⎬⎭";
static_assert(kGreekLow.size() == 0x7F - 0x20 && kGreekHigh.size() == 0xFF - 0xA0);

struct Mark {
  unsigned char code;
  char32_t letter;
};

/// In the order of their codes.
constexpr Mark kMarks[] = {
    {0x20, U' '}, {0x22, U'✂'}, {0x28, U'☎'}, {0x2A, U'✉'}, {0x36, U'⌛'}, {0x3E, U'✇'},
    {0x3F, U'✍'}, {0x41, U'✌'}, {0x45, U'☜'}, {0x46, U'☞'}, {0x47, U'☝'}, {0x48, U'☟'},
    {0x4A, U'☺'}, {0x4C, U'☹'}, {0x4E, U'☠'}, {0x4F, U'⚐'}, {0x51, U'✈'}, {0x52, U'☼'},
    {0x54, U'❄'}, {0x58, U'✠'}, {0x59, U'✡'}, {0x5A, U'☪'}, {0x5B, U'☯'}, {0x5D, U'☸'},
    {0x6C, U'●'}, {0x6D, U'❍'}, {0x6E, U'■'}, {0x6F, U'□'}, {0x71, U'❑'}, {0x72, U'❒'},
    {0x73, U'⬧'}, {0x74, U'⧫'}, {0x75, U'◆'}, {0x76, U'❖'}, {0x77, U'⬥'}, {0x7B, U'❀'},
    {0x7C, U'✿'}, {0x7D, U'❝'}, {0x7E, U'❞'}, {0x80, U'⓪'}, {0x81, U'①'}, {0x82, U'②'},
    {0x83, U'③'}, {0x84, U'④'}, {0x85, U'⑤'}, {0x86, U'⑥'}, {0x87, U'⑦'}, {0x88, U'⑧'},
    {0x89, U'⑨'}, {0x8A, U'⑩'}, {0x8B, U'⓿'}, {0x8C, U'❶'}, {0x8D, U'❷'}, {0x8E, U'❸'},
    {0x8F, U'❹'}, {0x90, U'❺'}, {0x91, U'❻'}, {0x92, U'❼'}, {0x93, U'❽'}, {0x94, U'❾'},
    {0x95, U'❿'}, {0x9E, U'·'}, {0x9F, U'•'}, {0xA1, U'○'}, {0xA4, U'◉'}, {0xA5, U'◎'},
    {0xA7, U'▪'}, {0xA8, U'◻'}, {0xAA, U'✦'}, {0xAB, U'★'}, {0xAC, U'✶'}, {0xAD, U'✴'},
    {0xAE, U'✹'}, {0xAF, U'✵'}, {0xB1, U'⌖'}, {0xB6, U'✰'}, {0xD5, U'⌫'}, {0xD6, U'⌦'},
    {0xD8, U'➢'}, {0xDF, U'←'}, {0xE0, U'→'}, {0xE1, U'↑'}, {0xE2, U'↓'}, {0xE3, U'↖'},
    {0xE4, U'↗'}, {0xE5, U'↙'}, {0xE6, U'↘'}, {0xE8, U'➔'}, {0xEF, U'⇦'}, {0xF0, U'⇨'},
    {0xF1, U'⇧'}, {0xF2, U'⇩'}, {0xF3, U'⬄'}, {0xF4, U'⇳'}, {0xFB, U'✗'}, {0xFC, U'✓'},
    {0xFD, U'☒'}, {0xFE, U'☑'}};

bool StartsWith(std::string_view name, std::string_view lower) {
  const auto same = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; };
  return name.size() >= lower.size() && std::equal(lower.begin(), lower.end(), name.begin(),
                                                   [&](char b, char a) { return same(a, b); });
}

char32_t Mathematics(unsigned code) {
  if (code >= 0x20 && code < 0x7F) return kGreekLow[code - 0x20];
  return code >= 0xA0 && code < 0xFF ? kGreekHigh[code - 0xA0] : 0;
}

char32_t MarkOf(unsigned code) {
  const auto* mark = std::lower_bound(std::begin(kMarks), std::end(kMarks), code,
                                      [](const Mark& m, unsigned c) { return m.code < c; });
  return mark != std::end(kMarks) && mark->code == code ? mark->letter : 0;
}

}  // namespace

char32_t SymbolLetter(std::string_view faceName, unsigned code) {
  if (StartsWith(faceName, "wingdings") && faceName.size() == 9) return MarkOf(code);
  if (StartsWith(faceName, "symbol")) return Mathematics(code);
  return 0;
}

}  // namespace rasterkit::detail
