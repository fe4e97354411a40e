#include <QComboBox>
#include <QTest>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/size/choose_size.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/runtime/ports.h>

#include "tests/dialogs/size/size_picture.h"
#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

using test::PictureOf;
using test::WhenModal;

/// Settings that live as long as the test.
class ChooseSizeTest : public testing::Test {
 protected:
  ChooseSizeTest() {
    HostPorts().readSetting = [this](const std::string& section, const std::string& key) {
      const auto found = settings.find(section + "/" + key);
      return found == settings.end() ? std::nullopt : std::optional(found->second);
    };
    HostPorts().writeSetting = [this](const std::string& section, const std::string& key,
                                      const std::string& value) {
      settings[section + "/" + key] = value;
    };
  }
  ~ChooseSizeTest() override { HostPorts() = before; }

  static void Type(QWidget& form, const char* name, const char* text) {
    auto* edit = form.findChild<TFloatEdit*>(name);
    edit->setFocus();
    edit->selectAll();
    QTest::keyClicks(edit, text);
  }

  const Ports before = HostPorts();
  std::map<std::string, std::string> settings;
  Picture picture = PictureOf(400, 300, {100, 100});
};

TEST_F(ChooseSizeTest, Enter_Should_AnswerWithTheStep) {
  WhenModal([](QWidget& form) {
    Type(form, "FlEdHeight", "150");
    QTest::keyClick(&form, Qt::Key_Return);
  });
  const std::optional<RecipeResize> step = ChooseSize(picture);
  ASSERT_TRUE(step);
  EXPECT_EQ(step->unit, LengthUnit::pixels);
  EXPECT_EQ(step->width, 0);
  EXPECT_EQ(step->height, 150);
}

TEST_F(ChooseSizeTest, Cancel_Should_AnswerNothingAndRememberNothing) {
  WhenModal([](QWidget& form) {
    form.findChild<QComboBox*>("UnitBox")->setCurrentIndex(2);
    QTest::keyClick(&form, Qt::Key_Escape);
  });
  EXPECT_FALSE(ChooseSize(picture));
  EXPECT_FALSE(settings.contains("Settings/ChooseSize.Unit"));
}

TEST_F(ChooseSizeTest, TheUnit_Should_BeRemembered) {
  WhenModal([](QWidget& form) {
    form.findChild<QComboBox*>("UnitBox")->setCurrentIndex(2);
    Type(form, "FlEdWidth", "25.4");
    QTest::keyClick(&form, Qt::Key_Return);
  });
  const std::optional<RecipeResize> step = ChooseSize(picture);
  ASSERT_TRUE(step);
  EXPECT_EQ(step->unit, LengthUnit::millimeters);
  EXPECT_DOUBLE_EQ(step->width, 25.4);
  EXPECT_EQ(step->dpi, 100);
  int place = -1;
  WhenModal([&](QWidget& form) { place = form.findChild<QComboBox*>("UnitBox")->currentIndex(); });
  EXPECT_FALSE(ChooseSize(picture));
  EXPECT_EQ(place, 2);
}

}  // namespace
}  // namespace rasterkit
