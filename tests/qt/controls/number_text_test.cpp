#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/qt/controls/number_text.h>

namespace rasterkit::detail {
namespace {

constexpr auto kInvalid = QValidator::Invalid;
constexpr auto kUnfinished = QValidator::Intermediate;
constexpr auto kAcceptable = QValidator::Acceptable;

NumberText English(int decimals, double minimum = -1e6, double maximum = 1e6) {
  return {QLocale(QLocale::English), decimals, minimum, maximum};
}

NumberText German(int decimals) {
  return {QLocale(QLocale::German, QLocale::Germany), decimals, -1e6, 1e6};
}

QValidator::State StateOf(const NumberText& rules, QString text) {
  return rules.Check(text);
}

TEST(NumberText, Format_Should_RoundToDecimals_When_ThereAreMore) {
  EXPECT_EQ(English(0).Format(133.3333), "133");
  EXPECT_EQ(English(2).Format(133.3333), "133.33");
  EXPECT_EQ(German(2).Format(1234.5), "1234,50");
}

TEST(NumberText, Format_Should_ShowNoSign_When_ZeroIsShown) {
  EXPECT_EQ(English(0).Format(-0.3), "0");
  EXPECT_EQ(English(1).Format(-0.04), "0.0");
  EXPECT_EQ(English(1).Format(-0.0), "0.0");
  EXPECT_EQ(English(1).Format(-0.06), "-0.1");
}

TEST(NumberText, Check_Should_Refuse_When_TextCannotBecomeANumber) {
  for (const char* text : {"a", "1a", "1e5", "nan", "inf", "0x10", "--1", "1-", "+-1", "1+1",
                           "1.2.3", "12%", "1.234"}) {
    EXPECT_EQ(StateOf(English(2), text), kInvalid) << text;
    EXPECT_FALSE(English(2).Read(text)) << text;
  }
}

TEST(NumberText, Check_Should_WaitForMore_When_NumberHasOnlyBegun) {
  for (const char* text : {"", "-", "+", ".", "-.", " "}) {
    EXPECT_EQ(StateOf(English(2), text), kUnfinished) << text;
    EXPECT_FALSE(English(2).Read(text)) << text;
  }
}

TEST(NumberText, Check_Should_RefuseSign_When_NothingNegativeIsAllowed) {
  EXPECT_EQ(StateOf(English(0, 0), "-"), kInvalid);
  EXPECT_EQ(StateOf(English(0, 0), "-5"), kInvalid);
  EXPECT_EQ(StateOf(English(0, 0), "+5"), kAcceptable);
}

TEST(NumberText, Check_Should_RefusePoint_When_ThereAreNoDecimals) {
  EXPECT_EQ(StateOf(English(0), "1."), kInvalid);
  EXPECT_EQ(StateOf(English(0), "1,"), kInvalid);
}

TEST(NumberText, Check_Should_Refuse_When_NumberIsBeyondTheRangeForGood) {
  EXPECT_EQ(StateOf(English(0, -100, 100), "101"), kInvalid);
  EXPECT_EQ(StateOf(English(0, -100, 100), "-101"), kInvalid);
  EXPECT_EQ(StateOf(English(0, -100, 100), QString(400, u'9')), kInvalid);
  EXPECT_EQ(StateOf(English(0, 10, 100), "1"), kUnfinished);
  EXPECT_EQ(StateOf(English(0, -100, -10), "-1"), kUnfinished);
  EXPECT_EQ(StateOf(English(0, -100, -10), "5"), kInvalid);
}

TEST(NumberText, Read_Should_TakeBothPoints_When_Typed) {
  for (const NumberText& rules : {English(2), German(2)}) {
    EXPECT_EQ(rules.Read("12.5"), 12.5);
    EXPECT_EQ(rules.Read("12,5"), 12.5);
    EXPECT_EQ(rules.Read("7."), 7.0);
    EXPECT_EQ(rules.Read(".5"), 0.5);
  }
}

TEST(NumberText, Check_Should_ShowThePointOfTheLocale_When_TheOtherIsTyped) {
  QString text = "12.5";
  EXPECT_EQ(German(2).Check(text), kAcceptable);
  EXPECT_EQ(text, "12,5");
}

TEST(NumberText, Read_Should_DropGrouping_When_Pasted) {
  EXPECT_EQ(English(2).Read("1,234.5"), 1234.5);
  EXPECT_EQ(German(2).Read("1.234,5"), 1234.5);
  EXPECT_EQ(English(2).Read(" 1 234.5 "), 1234.5);
  EXPECT_EQ(English(2).Read(QString::fromUtf8("1\u00A0234.5\n")), 1234.5);
  EXPECT_EQ(English(2).Read("1,234,567"), std::nullopt);
}

TEST(NumberText, Read_Should_TakeOtherDigitsAndMinus_When_Pasted) {
  EXPECT_EQ(English(0).Read(QString::fromUtf8("\u2212\u0661\u0662")), -12.0);
}

TEST(NumberText, Read_Should_UnderstandFormat_When_LocaleIsAnother) {
  for (const QLocale::Language language :
       {QLocale::English, QLocale::German, QLocale::French, QLocale::Swedish, QLocale::Arabic,
        QLocale::Persian, QLocale::Hindi, QLocale::Estonian}) {
    const NumberText rules{QLocale(language), 3, -1e9, 1e9};
    for (const double value : {0.0, 1.5, -1234567.125, 98765.25}) {
      EXPECT_EQ(rules.Read(rules.Format(value)), value)
          << rules.locale.name().toStdString() << " " << rules.Format(value).toStdString();
    }
  }
}

TEST(NumberText, Read_Should_GiveNoNegativeZero) {
  EXPECT_FALSE(std::signbit(*English(0).Read("-0")));
}

TEST(HeldNumber, Set_Should_LeaveOutWhatIsNoNumber) {
  HeldNumber number{English(0), 5};
  EXPECT_FALSE(number.Set(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_FALSE(number.Set(std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(number.Set(-std::numeric_limits<double>::infinity()));
  EXPECT_EQ(number.value, 5);
}

TEST(HeldNumber, Set_Should_KeepTheDoubleAndReportNothing_When_ItShowsTheSame) {
  HeldNumber number{English(0), 133};
  EXPECT_FALSE(number.Set(133.25));
  EXPECT_EQ(number.value, 133.25);
  EXPECT_TRUE(number.Set(133.75));
}

TEST(HeldNumber, Set_Should_StayInTheRange) {
  HeldNumber number{English(0, 0, 100), 5};
  EXPECT_TRUE(number.Set(1e300));
  EXPECT_EQ(number.value, 100);
  EXPECT_TRUE(number.Set(-1));
  EXPECT_EQ(number.value, 0);
}

TEST(HeldNumber, Stepped_Should_StartFromWhatIsShown) {
  const HeldNumber number{English(0), 133.4};
  EXPECT_EQ(number.Stepped(1, 1), 134);
  EXPECT_EQ(number.Stepped(1, -10), 123);
}

}  // namespace
}  // namespace rasterkit::detail
