#include <QGuiApplication>
#include <QScreen>
#include <map>

#include <gtest/gtest.h>

#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/forms/window_settings.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

/// Settings in memory.
class WindowSettingsTest : public testing::Test {
 protected:
  void SetUp() override {
    HostPorts().readSetting = [this](const std::string& section, const std::string& key) {
      const auto found = kept_.find(section + "/" + key);
      return found == kept_.end() ? std::nullopt : std::optional(found->second);
    };
    HostPorts().writeSetting = [this](const std::string& section, const std::string& key,
                                      const std::string& value) {
      kept_[section + "/" + key] = value;
    };
  }
  void TearDown() override { HostPorts() = Ports(); }

  void Keep(int left, int top, int width, int height) {
    kept_["Settings/Form.Left"] = std::to_string(left);
    kept_["Settings/Form.Top"] = std::to_string(top);
    kept_["Settings/Form.Width"] = std::to_string(width);
    kept_["Settings/Form.Height"] = std::to_string(height);
  }

  std::map<std::string, std::string> kept_;
};

TEST_F(WindowSettingsTest, Place_Should_ComeBackAsItWasSaved) {
  QWidget window;
  window.setObjectName("Form");
  window.setGeometry(60, 70, 200, 150);
  SaveWindowSettings(window);
  EXPECT_EQ(kept_["Settings/Form.Left"], "60");
  EXPECT_EQ(kept_["Settings/Form.Maximized"], "0");
  QWidget again;
  again.setObjectName("Form");
  EXPECT_TRUE(LoadWindowSettings(again));
  EXPECT_EQ(again.geometry(), QRect(60, 70, 200, 150));
  EXPECT_FALSE(again.isMaximized());
}

TEST_F(WindowSettingsTest, Window_Should_ComeBackMaximized_When_ItWasSavedSo) {
  QWidget window;
  window.setObjectName("Form");
  window.setGeometry(60, 70, 200, 150);
  window.setWindowState(Qt::WindowMaximized);
  SaveWindowSettings(window);
  QWidget again;
  again.setObjectName("Form");
  EXPECT_TRUE(LoadWindowSettings(again));
  EXPECT_TRUE(again.isMaximized());
}

TEST_F(WindowSettingsTest, Window_Should_NotOpenMaximized_When_ItWasSavedAtItsOwnSize) {
  Keep(60, 70, 200, 150);
  kept_.insert_or_assign("Settings/Form.Maximized", std::string("0"));
  QWidget window;
  window.setObjectName("Form");
  window.setWindowState(Qt::WindowMaximized);
  EXPECT_TRUE(LoadWindowSettings(window));
  EXPECT_FALSE(window.isMaximized());
}

TEST_F(WindowSettingsTest, Place_Should_BeBroughtBack_When_ItsScreenIsGone) {
  Keep(90000, -90000, 200, 150);
  QWidget window;
  window.setObjectName("Form");
  EXPECT_TRUE(LoadWindowSettings(window));
  EXPECT_TRUE(QGuiApplication::primaryScreen()->availableGeometry().contains(window.geometry()));
  EXPECT_EQ(window.size(), QSize(200, 150));
}

TEST_F(WindowSettingsTest, Window_Should_Shrink_When_TheScreenIsSmaller) {
  Keep(0, 0, 50000, 60000);
  QWidget window;
  window.setObjectName("Form");
  EXPECT_TRUE(LoadWindowSettings(window));
  EXPECT_TRUE(QGuiApplication::primaryScreen()->availableGeometry().contains(window.geometry()));
}

TEST_F(WindowSettingsTest, Window_Should_StayAsItIs_When_WhatIsKeptIsNoPlace) {
  for (const char* broken :
       {"", "x", "1e9", "99999999999999999999", "-2147483648", "2000000", "0"}) {
    Keep(60, 70, 200, 150);
    kept_["Settings/Form.Width"] = broken;
    QWidget window;
    window.setObjectName("Form");
    const QRect before = window.geometry();
    EXPECT_FALSE(LoadWindowSettings(window)) << broken;
    EXPECT_EQ(window.geometry(), before);
  }
  kept_.clear();
  QWidget window;
  window.setObjectName("Form");
  EXPECT_FALSE(LoadWindowSettings(window));
}

TEST_F(WindowSettingsTest, Window_Should_NotBeKept_When_ItHasNoName) {
  QWidget window;
  SaveWindowSettings(window);
  EXPECT_TRUE(kept_.empty());
  EXPECT_FALSE(LoadWindowSettings(window));
}

TEST_F(WindowSettingsTest, Form_Should_OpenWhereItWasClosed) {
  const auto open = [](const QRect& moveTo) {
    TScaledForm form;
    form.setObjectName("Form");
    QRect place;
    test::WhenModal([&](QWidget& window) {
      place = window.geometry();
      if (moveTo.isValid()) window.setGeometry(moveTo);
    });
    form.ShowModal();
    return place;
  };
  open(QRect(110, 120, 210, 160));
  EXPECT_EQ(open(QRect()), QRect(110, 120, 210, 160));
}

TEST_F(WindowSettingsTest, Form_Should_HaveAPlaceForEachName) {
  TScaledForm form;
  form.setObjectName("Form");
  form.SetSettingsName("Form5");
  test::WhenModal([](QWidget&) {});
  form.ShowModal();
  EXPECT_TRUE(kept_.contains("Settings/Form5.Left"));
  EXPECT_FALSE(kept_.contains("Settings/Form.Left"));
}

const QList<QRect> kTwoScreens = {QRect(0, 0, 1000, 800), QRect(1000, 0, 500, 400)};

TEST(BringBack, Place_Should_Stay_When_ItLiesOnTheScreens) {
  const QRect inside(10, 30, 300, 200);
  EXPECT_EQ(BringBack(inside, kTwoScreens, 20), inside);
  const QRect acrossBoth(900, 30, 300, 200);
  EXPECT_EQ(BringBack(acrossBoth, kTwoScreens, 20), acrossBoth);
}

TEST(BringBack, Place_Should_MoveToTheScreenThatShowsMost) {
  EXPECT_EQ(BringBack(QRect(1350, 300, 200, 200), kTwoScreens, 0), QRect(1300, 200, 200, 200));
  EXPECT_EQ(BringBack(QRect(-50, 700, 200, 200), kTwoScreens, 0), QRect(0, 600, 200, 200));
}

TEST(BringBack, Place_Should_MoveToTheFirstScreen_When_NoneShowsIt) {
  EXPECT_EQ(BringBack(QRect(5000, 5000, 200, 200), kTwoScreens, 0), QRect(800, 600, 200, 200));
  EXPECT_EQ(BringBack(QRect(-5000, -5000, 200, 200), kTwoScreens, 0), QRect(0, 0, 200, 200));
}

TEST(BringBack, Caption_Should_StayOnTheScreen) {
  EXPECT_EQ(BringBack(QRect(10, 0, 200, 200), kTwoScreens, 24), QRect(10, 24, 200, 200));
}

TEST(BringBack, Place_Should_Shrink_When_ItIsLargerThanTheScreen) {
  EXPECT_EQ(BringBack(QRect(-10, -10, 3000, 3000), kTwoScreens, 24), QRect(0, 24, 1000, 776));
}

TEST(BringBack, Place_Should_Stay_When_ThereIsNoScreen) {
  EXPECT_EQ(BringBack(QRect(-5000, 0, 1, 1), {}, 24), QRect(-5000, 0, 1, 1));
}

}  // namespace
}  // namespace rasterkit
