#include "tests/dialogs/gallery/pseudo_language.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/qt/forms/language.h>
#include <rasterkit/strings/strings.h>

#include "tests/dialogs/gallery/for_each_form.h"
#include "tests/dialogs/gallery/form_rules.h"
#include "tests/support/forms/form_events.h"

namespace rasterkit::test {
namespace {

using Script = PseudoLanguage::Script;
using testing::IsEmpty;
using testing::SizeIs;

void ShrinkToLeast(QWidget& form) {
  form.resize(form.minimumSizeHint());
  Settle(form);
}

class InPseudoLanguage : public testing::TestWithParam<Script> {
 protected:
  const PseudoLanguage language_{GetParam()};
};

TEST_P(InPseudoLanguage, EveryForm_Should_BeTranslated) {
  ForEachForm([](QWidget& form) { EXPECT_THAT(UntranslatedTexts(form), IsEmpty()); });
}

TEST_P(InPseudoLanguage, EveryForm_Should_HaveRoomForItsTexts) {
  ForEachForm([](QWidget& form) {
    EXPECT_THAT(ClippedTexts(form), IsEmpty());
    ShrinkToLeast(form);
    EXPECT_THAT(ClippedTexts(form), IsEmpty()) << "as small as it gets";
  });
}

INSTANTIATE_TEST_SUITE_P(Script, InPseudoLanguage,
                         testing::Values(Script::accented, Script::rightToLeft),
                         [](const auto& info) {
                           return info.param == Script::accented ? "Accented" : "RightToLeft";
                         });

class InLanguage : public testing::TestWithParam<std::string> {
 protected:
  InLanguage() { EXPECT_TRUE(SetLanguage(GetParam())); }
  ~InLanguage() override { SetLanguage(""); }
};

TEST_P(InLanguage, EveryForm_Should_HaveRoomForItsTexts) {
  ForEachForm([](QWidget& form) {
    EXPECT_THAT(ClippedTexts(form), IsEmpty());
    ShrinkToLeast(form);
    EXPECT_THAT(ClippedTexts(form), IsEmpty()) << "as small as it gets";
  });
}

TEST_P(InLanguage, Mnemonics_Should_CallOneControlEach) {
  ForEachForm([](QWidget& form) { EXPECT_THAT(SharedMnemonics(form), IsEmpty()); });
}

INSTANTIATE_TEST_SUITE_P(Of, InLanguage, testing::ValuesIn(Languages()),
                         [](const auto& info) { return info.param; });

// Tests of the tools.

TEST(PseudoLanguage, Should_KeepMnemonicsAndPlaces) {
  EXPECT_EQ(PseudoLanguage::Translated("&Width: %d [%s]", Script::accented),
            "«&Ŵîðţĥ: %d [%s] ñññññ»");
  EXPECT_EQ(PseudoLanguage::Translated("ab", Script::rightToLeft), "«אב »");
  EXPECT_EQ(PseudoLanguage::Translated("-100", Script::accented), "-100");
}

TEST(UntranslatedTexts, ATextOfAnotherLanguage_Should_BeFound) {
  QWidget form;
  QLabel label("«ŵ» 12 (F1)", &form);
  QPushButton button("&«ŵ»", &form);
  QComboBox box(&form);
  box.addItem("300");
  EXPECT_THAT(UntranslatedTexts(form), IsEmpty());
  box.addItem("entry");
  EXPECT_THAT(UntranslatedTexts(form), SizeIs(1));
  button.setToolTip("tip");
  EXPECT_THAT(UntranslatedTexts(form), SizeIs(testing::Ge(2)));
  label.setText("«ŵ» more");
  form.setWindowTitle("title");
  EXPECT_THAT(UntranslatedTexts(form), SizeIs(testing::Ge(4)));
}

}  // namespace
}  // namespace rasterkit::test
