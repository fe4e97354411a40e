#include <algorithm>

#include <rasterkit/drawing/text/symbol_letters.h>

namespace rasterkit::detail {
namespace {

/// Marks a code without a letter in the tables.
constexpr char32_t kNone = U'_';

/// Codes from 0x20.
constexpr std::u32string_view kGreekLow =
    U" !∀#∃%&∋()∗+,−./0123456789:;<=>?"
    U"≅ΑΒΧΔΕΦΓΗΙϑΚΛΜΝΟΠΘΡΣΤΥςΩΞΨΖ[∴]⊥_"
    U"‾αβχδεφγηιϕκλμνοπθρστυϖωξψζ{|}∼";
/// Codes from 0xA0.
constexpr std::u32string_view kGreekHigh =
    U"€ϒ′≤⁄∞ƒ♣♦♥♠↔←↑→↓°±″≥×∝∂•÷≠≡≈…⏐⎯↵"
    U"ℵℑℜ℘⊗⊕∅∩∪⊃⊇⊄⊂⊆∈∉∠∇®©™∏√⋅¬∧∨⇔⇐⇑⇒⇓"
    U"◊〈®©™∑⎛⎜⎝⎡⎢⎣⎧⎨⎩⎪€〉∫⌠⎮⌡⎞⎟⎠⎤⎥⎦⎫⎬⎭";
static_assert(kGreekLow.size() == 0x7F - 0x20 && kGreekHigh.size() == 0xFF - 0xA0);

// Codes from 0x20, sixteen per line. Letters that common fonts have replace those of the same shape
// that are thinner, bolder or larger.
constexpr std::u32string_view kWingdings =
    U" ✏✂✁👓🔔📖🕯☎✆✉🖃📪📫📬📭"
    U"📁📂📄🗏🗐🗄⌛⌨🖰🖲🖳🖴🖫🖬✇✍"
    U"🖎✌👌👍👎☜☞☝☟✋☺😐☹💣☠⚐"
    U"🏱✈☼💧❄✟✞🕈✠✡☪☯ॐ☸♈♉"
    U"♊♋♌♍♎♏♐♑♒♓&&●❍■□"
    U"□❑❒⧫⧫◆❖◆⌧⍓⌘❀✿❝❞▯"
    U"⓪➀➁➂➃➄➅➆➇➈➉⓿➊➋➌➍"
    U"➎➏➐➑➒➓🙢🙠🙡🙣🙞🙜🙝🙟·•"
    U"▪○○○◉◎❍▪◻🟁✦★✶✴✹✵"
    U"⯐⌖⟡⌑�✪✰🕐🕑🕒🕓🕔🕕🕖🕗🕘"
    U"🕙🕚🕛⮰⮱⮲⮳⮴⮵⮶⮷🙪🙫🙕🙔🙗"
    U"🙖🙐🙑🙒🙓⌫⌦⮘➢⮙⮛⮈➲⮉⮋←"
    U"→↑↓↖↗↙↘⬅➡⬆⬇⬉⬈⬋⬊⇦"
    U"⇨⇧⇩⬄⇳⬁⬀⬃⬂▭▫✗✓☒☑_";

constexpr std::u32string_view kWingdings2 =
    U" 🖊🖋🖌🖍✄✀☏🕽🗅🗆🗇🗈🗉🗊🗋"
    U"🗌🗍📋🗑🗔🖵🖶🖷🖸🖭🖯🖱👍👎☜☞"
    U"☚☛☜☞☚☛☝☟🖠🖡☝☟🖢🖣✋✗"
    U"✓☒☑☒☒⊗⊗⊘⊘&&&&‽‽‽"
    U"‽🙦🙤🙥🙧🙚🙘🙙🙛⓪①②③④⑤⑥"
    U"⑦⑧⑨⑩⓿❶❷❸❹❺❻❼❽❾❿_"
    U"☉🌕☽☾⸿✝✝🕜🕝🕞🕟🕠🕡🕢🕣🕤"
    U"🕥🕦🕧🙨🙩⋅••●○○○○⊙◉▪"
    U"▪◾■□□□□▣▣▣▣◆◆◆◆◇"
    U"◈◈◈◈⧫⧫⧫⧫◊◊◖◗◓◒■◆"
    U"⬟⯂⬣⬢⯃⯄++✚✚✚✚✚××✕"
    U"✕✖✖✖******✱✱✱✱✱✱"
    U"✳✳✳✳✳🟀🟂✦✦★★✶✶✴✴✹"
    U"✹🟃🟇✯🟍🟔✦⯍※⁂______";

constexpr std::u32string_view kWingdings3 =
    U" ←→↑↓↖↗↙↘⇤⇥⤒⤓⇱⇲⇞"
    U"⇟↔↕⇠⇢⇡⇣↯↲↳↰↱⮤⮥⮦↴"
    U"↩↪↵⮓⇆⇵↹⭿⇇⇉⇈⇊↶⮍⮎⮌"
    U"↻↺⎋⌤⌃⌥␣⍽⇪⇪⇦⇨⇦⇨⇦⇨"
    U"⇦⇨⇦⇨⇦⇨←→↑↓↖↗↙↘↔↕"
    U"▲▼△▽◀▶◁▷◣◢◤◥◂▸▴_"
    U"▾▲▼◀▶◀▶▲▼←→↑↓←→↑"
    U"↓⬅➡⬆⬇⬅➡⬆⬇←→↑↓←→↑"
    U"↓←→↑↓←→←→⬅➡⬅____"
    U"➡⬅➡⬅➡⬅➡⬆⬇⬅➡⬆⬇⬅➡⬆"
    U"⬇⬅➡⬆⬇⬅➡⬆⬇⮨⮩⮪⮫⮬⮭⮮"
    U"⮯←→↑↓↖↗↙↘←→↑↓↖↗↙"
    U"↘⬅➡⬆⬇⬉⬈⬋⬊◀▶▲▼◀▶▲"
    U"▼_______________";

constexpr std::u32string_view kWebdings =
    U" 🕷🕸🕲🕶🏆🎖🖇🗨🗩🗰🗱🌶🎗🙾🙼"
    U"▁□❐◀▶▲▼⏪⏩⏮⏭⏸■●🗚🗳"
    U"🛠🏗🏘🏙🏚🏜🏭🏛🏠🏖🏝🛣🔍🏔👁👂"
    U"🏞🏕🛤🏟🛳🕬🕫🕨🔈♥🎕🗬🙽🗭🗪🗫"
    U"⮔✔🚲□🛡📦🛱■🚑ℹ✈🛰🟈🕴●🛥"
    U"🚔↻✕❓🚲🚇🚍⛳⊘⊖🚭🗮|🗯🗲_";

/// Parts of formulas. Accents are spacing characters, as the record positions them.
constexpr std::u32string_view kFormulas =
    U" __ˋˆ˜˙_________________________"
    U"___∐ƛ____∩_…⋯⋮⋰⋱_∵___∪__________"
    U"‵↦↕⇕____ħ___ℓ∓_∘________________";

struct Table {
  std::string_view name;  ///< of the font, in lower case
  std::u32string_view letters;
};
constexpr Table kTables[] = {{"wingdings", kWingdings},
                             {"wingdings 2", kWingdings2},
                             {"wingdings 3", kWingdings3},
                             {"webdings", kWebdings},
                             {"mt extra", kFormulas}};

/// Fonts whose signs have a Unicode block of their own, in the same order with a few exceptions.
constexpr std::string_view kOrnamentFonts[] = {"zapfdingbats", "zapf dingbats", "itc zapf dingbats",
                                               "monotype sorts"};

constexpr char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool IsName(std::string_view name, std::string_view lower) {
  return std::equal(name.begin(), name.end(), lower.begin(), lower.end(),
                    [](char a, char b) { return Lower(a) == b; });
}

bool IsMathematics(std::string_view name) {
  constexpr std::string_view kLower = "symbol";
  return name.size() >= kLower.size() && IsName(name.substr(0, kLower.size()), kLower);
}

bool IsOrnaments(std::string_view name) {
  return std::any_of(std::begin(kOrnamentFonts), std::end(kOrnamentFonts),
                     [&](std::string_view lower) { return IsName(name, lower); });
}

const Table* TableOf(std::string_view name) {
  const Table* table = std::find_if(std::begin(kTables), std::end(kTables),
                                    [&](const Table& t) { return IsName(name, t.name); });
  return table == std::end(kTables) ? nullptr : table;
}

char32_t Mathematics(unsigned code) {
  if (code >= 0x20 && code < 0x7F) return kGreekLow[code - 0x20];
  return code >= 0xA0 && code < 0xFF ? kGreekHigh[code - 0xA0] : 0;
}

char32_t Ornament(unsigned code) {
  // Signs that existed in Unicode before the block did.
  constexpr std::pair<unsigned, char32_t> kOthers[] = {
      {0x20, U' '}, {0x25, U'☎'}, {0x2A, U'☛'}, {0x2B, U'☞'}, {0x48, U'★'}, {0x6C, U'●'},
      {0x6E, U'■'}, {0x73, U'▲'}, {0x74, U'▼'}, {0x75, U'◆'}, {0x77, U'◗'}, {0xA8, U'♣'},
      {0xA9, U'♦'}, {0xAA, U'♥'}, {0xAB, U'♠'}, {0xD5, U'→'}, {0xD6, U'↔'}, {0xD7, U'↕'}};
  for (const auto& [at, letter] : kOthers) {
    if (at == code) return letter;
  }
  if (code >= 0x21 && code <= 0x7E) return 0x2701 + (code - 0x21);
  if (code >= 0xAC && code <= 0xB5) return U'①' + (code - 0xAC);
  return code >= 0xA1 && code <= 0xFE && code != 0xF0 ? 0x2761 + (code - 0xA1) : 0;
}

}  // namespace

bool IsSymbolFont(std::string_view faceName) {
  return IsMathematics(faceName) || IsOrnaments(faceName) || TableOf(faceName) != nullptr;
}

char32_t SymbolLetter(std::string_view faceName, unsigned code) {
  if (IsMathematics(faceName)) return Mathematics(code);
  if (IsOrnaments(faceName)) return Ornament(code);
  const Table* table = TableOf(faceName);
  if (!table || code < 0x20 || code - 0x20 >= table->letters.size()) return 0;
  const char32_t letter = table->letters[code - 0x20];
  return letter == kNone ? 0 : letter;
}

}  // namespace rasterkit::detail
