#include <QApplication>
#include <QTimer>
#include <clocale>
#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>

#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/qt/look/style.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/environment.h"

// A host without a QApplication, or with one of its own.
namespace rasterkit {
namespace {

using test::Environment;

class ModalCallTest : public testing::Test {
 protected:
  void SetUp() override { qputenv("QT_QPA_PLATFORM", "offscreen"); }
  void TearDown() override { HostPorts() = Ports(); }
};

int OpenAndCancel() {
  TScaledForm form;
  QTimer::singleShot(0, &form, &QDialog::reject);
  return form.ShowModal();
}

TEST_F(ModalCallTest, Call_Should_MakeAnApplicationAndEndIt_When_TheHostHasNone) {
  ASSERT_EQ(QCoreApplication::instance(), nullptr);
  {
    const TModalCall call;
    EXPECT_NE(qobject_cast<QApplication*>(QCoreApplication::instance()), nullptr);
    EXPECT_TRUE(HostPorts().messagePump);
    // As in rasterkit.desktop, which desktops find icon and name by.
    EXPECT_EQ(QGuiApplication::desktopFileName(), "rasterkit");
    const QImage drawn = QGuiApplication::windowIcon().pixmap(48, 48).toImage();
    EXPECT_EQ(QColor(drawn.pixel(5, 30)), QColor("#1f4e79")) << "the left rim";
    EXPECT_EQ(OpenAndCancel(), mrCancel);
  }
  EXPECT_EQ(QCoreApplication::instance(), nullptr);
  EXPECT_FALSE(HostPorts().messagePump);
}

TEST_F(ModalCallTest, Calls_Should_FollowEachOther_When_TheHostHasNoApplication) {
  for (int i = 0; i < 3; ++i) {
    const TModalCall call;
    EXPECT_EQ(OpenAndCancel(), mrCancel);
  }
}

TEST_F(ModalCallTest, Calls_Should_Nest) {
  const TModalCall outer;
  {
    const TModalCall inner;
    EXPECT_EQ(OpenAndCancel(), mrCancel);
  }
  EXPECT_NE(QCoreApplication::instance(), nullptr);
  EXPECT_TRUE(HostPorts().messagePump);
  EXPECT_EQ(OpenAndCancel(), mrCancel);
}

TEST_F(ModalCallTest, Call_Should_UseTheHostsApplication_When_ThereIsOne) {
  int argc = 1;
  char name[] = "host";
  char* argv[] = {name, nullptr};
  const QApplication host(argc, argv);
  {
    const TModalCall call;
    EXPECT_TRUE(QGuiApplication::windowIcon().isNull()) << "the windows are the host's";
    EXPECT_EQ(QCoreApplication::instance(), &host);
    EXPECT_EQ(OpenAndCancel(), mrCancel);
  }
  EXPECT_EQ(QCoreApplication::instance(), &host);
}

TEST_F(ModalCallTest, Call_Should_Throw_When_TheApplicationHasNoWidgets) {
  int argc = 1;
  char name[] = "host";
  char* argv[] = {name, nullptr};
  const QCoreApplication host(argc, argv);
  EXPECT_THROW(TModalCall(), Error);
}

TEST_F(ModalCallTest, Call_Should_Throw_When_TheThreadIsNotTheApplications) {
  const TModalCall call;
  std::thread([] { EXPECT_THROW(TModalCall(), Error); }).join();
}

void ExpectNoWindow() {
  EXPECT_THROW(TModalCall(), Error);
  EXPECT_EQ(QCoreApplication::instance(), nullptr);
}

TEST_F(ModalCallTest, Call_Should_Throw_When_ThereIsNoDisplay) {
  for (const char* platform : {"", "xcb", "wayland", "wayland;xcb"}) {
    const Environment environment(
        {{"QT_QPA_PLATFORM", platform}, {"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}});
    ExpectNoWindow();
  }
}

TEST_F(ModalCallTest, Call_Should_Throw_When_TheDisplayDoesNotAnswer) {
  for (const char* platform : {"", "xcb", "wayland"})
    for (const char* display : {":4242", "nonsense", ":", ":-1"}) {
      const Environment environment({{"QT_QPA_PLATFORM", platform},
                                     {"DISPLAY", display},
                                     {"WAYLAND_DISPLAY", "wayland-4242"}});
      ExpectNoWindow();
    }
}

TEST_F(ModalCallTest, Call_Should_Throw_When_QtHasNoSuchPlatform) {
  const Environment environment("QT_QPA_PLATFORM", "paper;pencil:thin");
  ExpectNoWindow();
}

TEST_F(ModalCallTest, Call_Should_TakeTheFirstPlatformThatWorks) {
  const Environment environment("QT_QPA_PLATFORM", "paper;offscreen;minimal");
  const TModalCall call;
  EXPECT_EQ(QGuiApplication::platformName(), QLatin1String("offscreen"));
}

TEST_F(ModalCallTest, Locale_Should_StayTheProcesss) {
  // The process's own locale, which an application object would change; once per process.
  qputenv("LC_ALL", "C.UTF-8");
  ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
  {
    const TModalCall call;
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
    EXPECT_EQ(std::strtod("0.5", nullptr), 0.5);
  }
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST_F(ModalCallTest, Style_Should_BeTheSettings_When_TheApplicationIsOurs) {
  std::string style = "dark";
  HostPorts().readSetting = [&](const std::string& section, const std::string& key) {
    return section == "Settings" && key == "Style" ? std::optional(style) : std::nullopt;
  };
  {
    const TModalCall call;
    EXPECT_TRUE(IsDark(QApplication::palette()));
  }
  style = "light";
  const TModalCall call;
  EXPECT_FALSE(IsDark(QApplication::palette()));
}

}  // namespace
}  // namespace rasterkit
