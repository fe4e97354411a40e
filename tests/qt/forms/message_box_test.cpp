#include <QApplication>
#include <QMessageBox>
#include <thread>

#include <gtest/gtest.h>

#include <rasterkit/qt/forms/message_box.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"

namespace rasterkit {
namespace {

TEST(MessageBox, Text_Should_BeShownPlain) {
  QString shown;
  Qt::TextFormat format = Qt::AutoText;
  test::WhenModal([&](QWidget& window) {
    auto* box = qobject_cast<QMessageBox*>(&window);
    ASSERT_NE(box, nullptr);
    shown = box->text();
    format = box->textFormat();
    EXPECT_FALSE(box->windowTitle().isEmpty());
    EXPECT_FALSE(box->iconPixmap().isNull());
  });
  ShowMessageBox("<b>Größe</b>");
  EXPECT_EQ(shown, QString::fromUtf8("<b>Größe</b>"));
  EXPECT_EQ(format, Qt::PlainText);
}

TEST(MessageBox, Port_Should_ShowOne) {
  const QtHost host;
  bool isShown = false;
  test::WhenModal([&](QWidget& window) { isShown = window.inherits("QMessageBox"); });
  ShowMessage("text");
  EXPECT_TRUE(isShown);
}

TEST(MessageBox, Text_Should_BeShownByTheMainThread_When_AWorkerHasOne) {
  std::thread([] { ShowMessageBox("from a worker"); }).join();
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  QString shown;
  test::WhenModal([&](QWidget& window) { shown = dynamic_cast<QMessageBox&>(window).text(); });
  while (shown.isEmpty()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  EXPECT_EQ(shown, "from a worker");
}

}  // namespace
}  // namespace rasterkit
