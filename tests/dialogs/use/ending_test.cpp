// Every way to close a dialog except OK leaves the caller's data unchanged.

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/dialogs/bitmapframe/crop_bitmap.h>
#include <rasterkit/dialogs/editchangesize/edit_size.h>
#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/qt/preview/preview_loader.h>
#include <rasterkit/runtime/ports.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

struct Way {
  const char* name;
  void (*end)(QWidget& window);
};

void PrintTo(const Way& way, std::ostream* out) {
  *out << way.name;
}

constexpr Way kWays[] = {
    {"Escape", [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); }},
    {"Frame", [](QWidget& window) { window.close(); }},
    {"HostQuits", [](QWidget&) { QCoreApplication::quit(); }},
    {"HostsLoopEnds", [](QWidget&) { QCoreApplication::exit(3); }},
};

class Ending : public testing::TestWithParam<Way> {
 protected:
  /// Runs `call` inside of a host's loop and ends the window that it opens after `touch`.
  void Run(const std::function<void(QWidget&)>& touch, const std::function<void()>& call) {
    bool isBack = false;
    QTimer::singleShot(0, [&] {
      WhenModal([&](QWidget& window) {
        // The focus comes with the activation.
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        touch(window);
        GetParam().end(window);
      });
      call();
      isBack = true;
      QCoreApplication::quit();
    });
    QApplication::exec();
    EXPECT_TRUE(isBack);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  }
};

TEST_P(Ending, CropBitmap_Should_LeaveBitmapAndRectangle) {
  const TBitmap original = GradientBitmap(pf24bit, 600, 400);
  TBitmap bitmap = GradientBitmap(pf24bit, 600, 400);
  TRect rect{10, 20, 110, 70};
  bool answer = true;
  const auto touch = [](QWidget& window) {
    QTest::keyClick(window.findChild<QWidget*>("PaintBox"), Qt::Key_Right, Qt::ShiftModifier);
    QTest::mouseClick(window.findChild<QWidget*>("SpeedButtonOrgSize"), Qt::LeftButton);
  };
  Run(touch, [&] { answer = CropBitmap(bitmap, rect); });
  EXPECT_FALSE(answer);
  EXPECT_TRUE(SamePixels(original, bitmap));
  EXPECT_EQ(rect.Left, 10);
  EXPECT_EQ(rect.Bottom, 70);
}

TEST_P(Ending, CropBitmap_Should_LeaveEverything_When_ADragGoesOn) {
  TBitmap bitmap = GradientBitmap(pf1bit, 600, 400);
  TRect rect{0, 0, 600, 400};
  bool answer = true;
  const auto touch = [](QWidget& window) {
    auto& box = *window.findChild<QWidget*>("PaintBox");
    QTest::mousePress(&box, Qt::LeftButton, Qt::NoModifier, box.rect().center());
    // The first Escape only cancels the drag.
    if (std::string_view(GetParam().name) == "Escape") QTest::keyClick(&box, Qt::Key_Escape);
  };
  Run(touch, [&] { answer = ChooseCropRect(bitmap, rect); });
  EXPECT_FALSE(answer);
  EXPECT_EQ(rect.Right, 600);
}

TEST_P(Ending, ChangeBitmap_Should_LeaveBitmapAndValues) {
  for (const int32_t operation : {0, 3, 5}) {
    const TBitmap original = GradientBitmap(pf24bit, 200, 100);
    TBitmap bitmap = GradientBitmap(pf24bit, 200, 100);
    TChgBmpValuesRec values{1, 2, 3, 4, 5, 6, 7};
    bool answer = true;
    const auto touch = [](QWidget& window) {
      QTest::keyClick(window.focusWidget(), Qt::Key_PageUp);
      QTest::keyClick(&window, Qt::Key_F5);
    };
    Run(touch, [&] { answer = ChangeBitmap(operation, &bitmap, true, values); });
    EXPECT_FALSE(answer);
    EXPECT_TRUE(SamePixels(original, bitmap));
    EXPECT_EQ(values.Red, 1);
    EXPECT_EQ(values.Brightness, 6);
  }
}

TEST_P(Ending, EditSize_Should_LeaveSizesAndBox) {
  int32_t width = 400, height = 300;
  bool proportional = false, answer = true;
  const auto touch = [](QWidget& window) { QTest::keyClicks(window.focusWidget(), "77"); };
  Run(touch, [&] { answer = EditSize(width, height, proportional); });
  EXPECT_FALSE(answer);
  EXPECT_EQ(width, 400);
  EXPECT_EQ(height, 300);
  EXPECT_FALSE(proportional);
}

TEST_P(Ending, FileDialogs_Should_LeaveTheName) {
  const TempFolder folder;
  const std::string path = (folder.Path() / "").string(), name = path + "plan.png";
  const QtHost host((folder.Path() / "settings.ini").string());
  std::string opened = name, saved = name;
  bool isOpened = true, isSaved = true;
  const auto touch = [](QWidget&) {};
  Run(touch, [&] { isOpened = BitmapOpenDialog(path, "", bfAll, opened, true); });
  Run(touch, [&] { isSaved = BitmapSaveDialog(path, ".png", true, saved, false); });
  detail::JoinLateTasks();
  EXPECT_FALSE(isOpened);
  EXPECT_FALSE(isSaved);
  EXPECT_EQ(opened, name);
  EXPECT_EQ(saved, name);
}

TEST_P(Ending, MessageBox_Should_Close) {
  const TempFolder folder;
  const QtHost host((folder.Path() / "settings.ini").string());
  Run([](QWidget&) {}, [] { ShowMessage("a message"); });
}

INSTANTIATE_TEST_SUITE_P(Ways, Ending, testing::ValuesIn(kWays),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace rasterkit::test
