#include <gtest/gtest.h>

#include <rasterkit/drawing/text/symbol_letters.h>
#include <rasterkit/drawing/text/text_letters.h>

namespace rasterkit::detail {
namespace {

std::u32string Seen(std::u16string_view text, bool runsLeft = false) {
  std::u32string seen;
  for (const TextLetter& letter : SeenLetters(text, runsLeft)) seen += letter.codePoint;
  return seen;
}

TEST(TextLetters, Should_KeepTheirUnits_When_OneTakesTwo) {
  const auto letters = LettersOf(u"a\xD83D\xDE00\xD800z");
  ASSERT_EQ(letters.size(), 4u);
  EXPECT_EQ(letters[1].codePoint, U'\x1F600');
  EXPECT_EQ(letters[1].units, 2u);
  EXPECT_EQ(letters[2].codePoint, char32_t{0xD800});
  EXPECT_EQ(letters[3].at, 4u);
}

TEST(TextOrder, Should_StayAsItIs_When_LettersRunToTheRight) {
  EXPECT_EQ(Seen(u"a (b) 12, äλж中"), U"a (b) 12, äλж中");
}

TEST(TextOrder, Should_TurnRound_When_LettersRunToTheLeft) {
  EXPECT_EQ(Seen(u"אבג"), U"גבא");
  EXPECT_EQ(Seen(u"ab אבג, דה cd"), U"ab הד ,גבא cd");
}

TEST(TextOrder, Should_KeepNumbers_When_TheyStandInHebrew) {
  EXPECT_EQ(Seen(u"א 12 ב"), U"ב 12 א");
  EXPECT_EQ(Seen(u"a 12 א"), U"a 12 א");
}

TEST(TextOrder, Should_TurnBracketsOver_When_TheyStandInHebrew) {
  EXPECT_EQ(Seen(u"א(ב)ג"), U"ג(ב)א");
  EXPECT_EQ(Seen(u"(א"), U"(א") << "the line's own bracket";
}

TEST(TextOrder, Should_BeginAtTheRight_When_TheLineRunsLeft) {
  EXPECT_EQ(Seen(u"ab אב", true), U"בא ab");
  EXPECT_EQ(Seen(u"ab.", true), U".ab");
}

TEST(TextOrder, Should_Survive_When_ThereIsLittle) {
  EXPECT_EQ(Seen(u"", true), U"");
  EXPECT_EQ(Seen(u"\x05B0", false), U"\x05B0");
  EXPECT_EQ(Seen(u" \x0644", false), U" \xFEDD");
}

std::u32string Joined(std::u16string_view text) {
  auto letters = LettersOf(text);
  JoinArabic(letters);
  std::u32string joined;
  for (const TextLetter& letter : letters) joined += letter.codePoint;
  return joined;
}

TEST(ArabicForms, Should_FollowTheirNeighbors) {
  EXPECT_EQ(Joined(u"\x0628\x064A\x062A"), U"\xFE91\xFEF4\xFE96") << "beh, yeh, teh";
  EXPECT_EQ(Joined(u"\x0628"), U"\xFE8F");
  EXPECT_EQ(Joined(u"\x062F\x0627\x0631"), U"\xFEA9\xFE8D\xFEAD") << "letters that never join";
  EXPECT_EQ(Joined(u"\x0639\x0631\x0628\x064A\x0629"), U"\xFECB\xFEAE\xFE91\xFEF4\xFE94");
  EXPECT_EQ(Joined(u"\x0628 \x0628"), U"\xFE8F \xFE8F");
}

TEST(ArabicForms, Should_PassOverVowelSigns) {
  EXPECT_EQ(Joined(u"\x0628\x064E\x0628"), U"\xFE91\x064E\xFE90");
}

TEST(ArabicForms, Should_MakeLamAndAlefOne) {
  auto letters = LettersOf(u"\x0628\x0644\x0627x");
  JoinArabic(letters);
  ASSERT_EQ(letters.size(), 3u);
  EXPECT_EQ(letters[1].codePoint, char32_t{0xFEFC});
  EXPECT_EQ(letters[1].units, 2u);
  EXPECT_EQ(letters[2].at, 3u);
  EXPECT_EQ(Joined(u"\x0644\x0627"), U"\xFEFB");
}

TEST(SymbolLetters, Should_BeThoseOfTheFont) {
  EXPECT_EQ(SymbolLetter("Symbol", 'a'), U'α');
  EXPECT_EQ(SymbolLetter("WINGDINGS", 'J'), U'☺');
  EXPECT_EQ(SymbolLetter("Wingdings", 0xFC), U'✓');
  EXPECT_EQ(SymbolLetter("Wingdings", 'a'), U'♋');
  EXPECT_EQ(SymbolLetter("Wingdings", 0xE0), U'→');
  EXPECT_EQ(SymbolLetter("Wingdings 2", 'P'), U'✓');
  EXPECT_EQ(SymbolLetter("Wingdings 2", 'R'), U'☑');
  EXPECT_EQ(SymbolLetter("Wingdings 2", 0x98), U'●');
  EXPECT_EQ(SymbolLetter("Wingdings 2", 0xF8), U'※');
  EXPECT_EQ(SymbolLetter("Wingdings 3", 'p'), U'▲');
  EXPECT_EQ(SymbolLetter("Wingdings 3", 0x22), U'→');
  EXPECT_EQ(SymbolLetter("Wingdings 3", 0xF0), U'▼');
  EXPECT_EQ(SymbolLetter("Webdings", 'a'), U'✔');
  EXPECT_EQ(SymbolLetter("Webdings", '4'), U'▶');
  EXPECT_EQ(SymbolLetter("ZapfDingbats", '4'), U'✔');
  EXPECT_EQ(SymbolLetter("Zapf Dingbats", 'l'), U'●');
  EXPECT_EQ(SymbolLetter("Monotype Sorts", 0xAC), U'①');
  EXPECT_EQ(SymbolLetter("ZapfDingbats", 0xB6), U'❶');
  EXPECT_EQ(SymbolLetter("ZapfDingbats", 0xD4), U'➔');
  EXPECT_EQ(SymbolLetter("ZapfDingbats", 0xFE), U'➾');
  EXPECT_EQ(SymbolLetter("MT Extra", '&'), U'˙');
  EXPECT_EQ(SymbolLetter("MT Extra", 'K'), U'…');
  EXPECT_EQ(SymbolLetter("MT Extra", 'h'), U'ħ');
  EXPECT_EQ(SymbolLetter("MT Extra", 'o'), U'∘');
}

TEST(SymbolLetters, Should_BeNone_When_TheFontHasNoSuchLetter) {
  for (const char* font : {"Symbol", "Wingdings", "Wingdings 2", "Wingdings 3", "Webdings",
                           "ZapfDingbats", "MT Extra"}) {
    EXPECT_TRUE(IsSymbolFont(font));
    EXPECT_EQ(SymbolLetter(font, ' '), U' ') << font;
    EXPECT_EQ(SymbolLetter(font, 0x1F), 0u) << font;
    EXPECT_EQ(SymbolLetter(font, 0xFF), 0u) << font;
    for (unsigned code = 0; code < 300; ++code) {
      const bool isItself = code == '_' && std::string_view(font) == "Symbol";
      EXPECT_EQ(SymbolLetter(font, code) == U'_', isItself) << font << ' ' << code;
    }
  }
  EXPECT_FALSE(IsSymbolFont("Wingdings 4"));
  EXPECT_FALSE(IsSymbolFont("Arial"));
  EXPECT_EQ(SymbolLetter("Arial", 'a'), 0u);
}

}  // namespace
}  // namespace rasterkit::detail
