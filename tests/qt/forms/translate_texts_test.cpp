#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>

#include <gtest/gtest.h>

#include <rasterkit/qt/forms/translate_texts.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// Puts every text in brackets, but knows no text with a mnemonic and none that is "unknown".
class TranslateTextsTest : public testing::Test {
 protected:
  void SetUp() override {
    SetTranslator([](std::string_view key) {
      const bool isKnown = key.find('&') == key.npos && key != "unknown";
      return isKnown ? std::string("[").append(key).append("]") : std::string();
    });
  }
  void TearDown() override { SetTranslator({}); }

  QWidget form_;
};

TEST_F(TranslateTextsTest, Captions_Should_BeTranslated) {
  form_.setWindowTitle("Change Size");
  QLabel label("Width / Height", &form_);
  QCheckBox box("proportional", &form_);
  QGroupBox group("Color", &form_);
  TranslateTexts(form_);
  EXPECT_EQ(form_.windowTitle(), "[Change Size]");
  EXPECT_EQ(label.text(), "[Width / Height]");
  EXPECT_EQ(box.text(), "[proportional]");
  EXPECT_EQ(group.title(), "[Color]");
}

TEST_F(TranslateTextsTest, Widgets_Should_BeTranslated_When_TheyLieDeep) {
  QGroupBox group(&form_);
  QWidget panel(&group);
  QLabel label("Red", &panel);
  TranslateTexts(form_);
  EXPECT_EQ(label.text(), "[Red]");
}

TEST_F(TranslateTextsTest, TextsForReadersAndTips_Should_BeTranslated) {
  QSpinBox edit(&form_);
  edit.setToolTip("tip");
  edit.setAccessibleName("name");
  edit.setSuffix("percent");
  TranslateTexts(form_);
  EXPECT_EQ(edit.toolTip(), "[tip]");
  EXPECT_EQ(edit.accessibleName(), "[name]");
  EXPECT_EQ(edit.suffix(), "[percent]");
}

TEST_F(TranslateTextsTest, Entries_Should_BeTranslated) {
  QComboBox box(&form_);
  box.addItems({"one", "two"});
  QTabWidget tabs(&form_);
  tabs.addTab(new QWidget, "page");
  TranslateTexts(form_);
  EXPECT_EQ(box.itemText(0), "[one]");
  EXPECT_EQ(box.itemText(1), "[two]");
  EXPECT_EQ(tabs.tabText(0), "[page]");
}

TEST_F(TranslateTextsTest, TypedText_Should_Stay) {
  QLineEdit edit("typed", &form_);
  edit.setPlaceholderText("hint");
  QSpinBox number(&form_);
  number.setValue(7);
  TranslateTexts(form_);
  EXPECT_EQ(edit.text(), "typed");
  EXPECT_EQ(edit.placeholderText(), "[hint]");
  EXPECT_EQ(number.value(), 7);
}

TEST_F(TranslateTextsTest, Mnemonic_Should_BeLookedUpWithout_When_ItIsNotKnownWith) {
  QPushButton known("&Sharpen", &form_);
  QPushButton unknown("&unknown", &form_);
  TranslateTexts(form_);
  EXPECT_EQ(known.text(), "[Sharpen]");
  EXPECT_EQ(unknown.text(), "&unknown");
}

TEST_F(TranslateTextsTest, Ampersand_Should_StayOne_When_ItIsNoMnemonic) {
  SetTranslator([](std::string_view key) {
    return std::string(key == "Save & close" ? "Sichern & Ende" : "");
  });
  QPushButton button("Save && &close", &form_);
  TranslateTexts(form_);
  EXPECT_EQ(button.text(), "Sichern && Ende");
}

TEST_F(TranslateTextsTest, Mnemonic_Should_BeTheTranslators_When_ItIsKnown) {
  SetTranslator([](std::string_view key) { return std::string(key == "&Width" ? "B&reite" : ""); });
  QLabel label("&Width", &form_);
  TranslateTexts(form_);
  EXPECT_EQ(label.text(), "B&reite");
}

TEST(TranslateTexts, Texts_Should_Stay_When_ThereIsNoTranslator) {
  QWidget form;
  QLabel label("&Width", &form);
  TranslateTexts(form);
  EXPECT_EQ(label.text(), "&Width");
}

}  // namespace
}  // namespace rasterkit
