#include "tests/dialogs/gallery/form_rules.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyleFactory>
#include <algorithm>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/strings/strings.h>

#include "tests/dialogs/gallery/for_each_form.h"
#include "tests/support/forms/form_events.h"

namespace rasterkit::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

void ShrinkToLeast(QWidget& form) {
  form.resize(form.minimumSizeHint());
  Settle(form);
}

/// Makes every text 40 percent longer, as some languages do.
class LongerTexts {
 public:
  LongerTexts() {
    SetTranslator([](std::string_view key) {
      std::string text(key);
      return text.append((key.size() * 2 + 4) / 5, 'n');
    });
  }
  ~LongerTexts() { SetTranslator({}); }
};

TEST(FormRules, Texts_Should_HaveTheirRoom) {
  ForEachForm([](QWidget& form) { EXPECT_THAT(ClippedTexts(form), IsEmpty()); });
}

TEST(FormRules, Texts_Should_HaveTheirRoom_When_TheTranslationIsLonger) {
  const LongerTexts longer;
  ForEachForm([](QWidget& form) { EXPECT_THAT(ClippedTexts(form), IsEmpty()); });
}

TEST(FormRules, Texts_Should_HaveTheirRoom_When_TheFormIsAsSmallAsItGets) {
  ForEachForm([](QWidget& form) {
    ShrinkToLeast(form);
    EXPECT_THAT(ClippedTexts(form), IsEmpty());
  });
}

TEST(FormRules, Texts_Should_HaveTheirRoom_When_LongerOnesStandInTheSmallestForm) {
  const LongerTexts longer;
  ForEachForm([](QWidget& form) {
    ShrinkToLeast(form);
    EXPECT_THAT(ClippedTexts(form), IsEmpty());
  });
}

TEST(FormRules, Texts_Should_HaveTheirRoom_InEveryStyle) {
  for (const QString& style : QStyleFactory::keys()) {
    SCOPED_TRACE(style.toStdString());
    QApplication::setStyle(style);
    ForEachForm([](QWidget& form) { EXPECT_THAT(ClippedTexts(form), IsEmpty()); });
  }
  QApplication::setStyle("Fusion");
}

TEST(FormRules, Texts_Should_HaveTheirRoom_When_TheFontIsLarge) {
  const QFont before = QApplication::font();
  QFont large = before;
  for (const double factor : {1.5, 2.0}) {
    large.setPointSizeF(before.pointSizeF() * factor);
    QApplication::setFont(large);
    ForEachForm([](QWidget& form) { EXPECT_THAT(ClippedTexts(form), IsEmpty()); });
  }
  QApplication::setFont(before);
}

TEST(FormRules, Controls_Should_HaveNamesForScreenReaders) {
  ForEachForm([](QWidget& form) { EXPECT_THAT(NamelessControls(form), IsEmpty()); });
}

TEST(FormRules, Controls_Should_HaveTips) {
  ForEachForm([](QWidget& form) { EXPECT_THAT(ControlsWithoutTip(form), IsEmpty()); });
}

TEST(FormRules, Mnemonics_Should_CallOneControlEach) {
  ForEachForm([](QWidget& form) { EXPECT_THAT(SharedMnemonics(form), IsEmpty()); });
}

/// "&Width" and "Width" are one key.
std::string WithoutMnemonic(std::string_view key) {
  std::string plain(key);
  plain.erase(std::remove(plain.begin(), plain.end(), '&'), plain.end());
  return plain;
}

/// "Shows help (F1)" is "Shows help" with the key that a control adds to it.
std::string WithoutShortcut(const std::string& hint) {
  return hint.substr(0, hint.rfind(" ("));
}

TEST(FormRules, Texts_Should_StandInTheResourceTable) {
  std::set<std::string> known;
  for (const std::string_view key : ResourceStringKeys()) known.insert(WithoutMnemonic(key));
  std::set<std::string> unknown;
  SetTranslator([&](std::string_view key) {
    const std::string plain = WithoutMnemonic(key);
    const bool hasLetters = std::any_of(plain.begin(), plain.end(), [](unsigned char character) {
      return std::isalpha(character) != 0;
    });
    const bool isKnown = known.contains(plain) || known.contains(WithoutShortcut(plain));
    if (hasLetters && !isKnown) unknown.insert(plain);
    return std::string();
  });
  ForEachForm([](QWidget&) {});
  SetTranslator({});
  EXPECT_THAT(unknown, IsEmpty());
}

// Tests of the rules.

TEST(ClippedTexts, ANarrowLabel_Should_BeFound) {
  QWidget form;
  QLabel label("a text that needs more", &form);
  label.setGeometry(0, 0, 20, 30);
  form.show();
  EXPECT_THAT(ClippedTexts(form), SizeIs(1));
  label.resize(label.sizeHint());
  form.resize(label.size());
  EXPECT_THAT(ClippedTexts(form), IsEmpty());
  label.move(5, 0);
  EXPECT_THAT(ClippedTexts(form), SizeIs(1));
}

TEST(NamelessControls, AFieldWithoutALabel_Should_BeFound) {
  QWidget form;
  QLineEdit edit(&form);
  form.show();
  EXPECT_THAT(NamelessControls(form), SizeIs(1));
  EXPECT_THAT(ControlsWithoutTip(form), SizeIs(1));
  edit.setAccessibleName("name");
  edit.setToolTip("tip");
  EXPECT_THAT(NamelessControls(form), IsEmpty());
  EXPECT_THAT(ControlsWithoutTip(form), IsEmpty());
}

TEST(SharedMnemonics, TwoButtonsOfOneLetter_Should_BeFound) {
  QWidget form;
  QPushButton first("&Red", &form);
  QPushButton second("G&reen", &form);
  form.show();
  EXPECT_THAT(SharedMnemonics(form), SizeIs(1));
  second.setText("&Green");
  EXPECT_THAT(SharedMnemonics(form), IsEmpty());
}

}  // namespace
}  // namespace rasterkit::test
