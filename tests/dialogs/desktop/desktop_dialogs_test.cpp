#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/desktop/desktop_dialogs.h>
#include <rasterkit/dialogs/editpdfbitmap/editor_isolation.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/qt/preview/preview_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

class DesktopDialogsTest : public testing::Test {
 protected:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ASSERT_NE(dialogs, nullptr);
  }

  /// Closes the window that the caller opens next.
  static void EndWindow(int result) {
    QTimer::singleShot(0, qApp, [result] {
      if (auto* const window = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
        window->done(result);
    });
  }

  const DesktopDialogs* const dialogs = rasterkit_desktop_dialogs(kDesktopVersion);
  std::string error;
};

TEST_F(DesktopDialogsTest, OtherVersions_Should_HaveNoTable) {
  EXPECT_EQ(rasterkit_desktop_dialogs(kDesktopVersion + 1), nullptr);
  EXPECT_EQ(rasterkit_desktop_dialogs(kDesktopVersion - 1), nullptr);
}

TEST_F(DesktopDialogsTest, Application_Should_LiveFromStartToEnd) {
  ASSERT_EQ(dialogs->start(Isolation::process, error), DesktopAnswer::confirmed) << error;
  EXPECT_NE(qApp, nullptr);
  dialogs->end();
  EXPECT_EQ(qApp, nullptr);
  ASSERT_EQ(dialogs->start(Isolation::process, error), DesktopAnswer::confirmed) << "once more";
  dialogs->end();
}

TEST_F(DesktopDialogsTest, Answers_Should_BeThoseOfTheUser) {
  ASSERT_EQ(dialogs->start(Isolation::process, error), DesktopAnswer::confirmed) << error;
  int32_t width = 8, height = 6;
  EndWindow(QDialog::Accepted);
  EXPECT_EQ(dialogs->editSize(width, height, error), DesktopAnswer::confirmed);
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->editSize(width, height, error), DesktopAnswer::canceled);
  TBitmap bitmap;
  bitmap.SetSize(8, 6);
  TRect rect{1, 2, 3, 4};
  EndWindow(QDialog::Accepted);
  EXPECT_EQ(dialogs->chooseCropRect(bitmap, rect, {}, error), DesktopAnswer::confirmed);
  EXPECT_EQ(rect.Bottom, 4);
  TChgBmpValuesRec values;
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->adjustBitmap(bitmap, values, error), DesktopAnswer::canceled);
  TrecSaveBitmap rec{6, 24, 96, 0, 90};
  std::string name = "plan";
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->saveBitmap("/maps", rec, name, error), DesktopAnswer::canceled);
  EXPECT_EQ(name, "plan");
  EndWindow(QDialog::Accepted);
  EXPECT_EQ(dialogs->saveBitmap("/maps", rec, name, error), DesktopAnswer::confirmed);
  EXPECT_EQ(name, "/maps/plan.jpg");
  EndWindow(QDialog::Accepted);
  EXPECT_EQ(dialogs->saveBitmapPixels("/maps", rec, width, height, name, error),
            DesktopAnswer::confirmed);
  EXPECT_EQ(width, 8);
  dialogs->end();
  EXPECT_EQ(error, "");
}

/// A worker program that is missing shows who needs one.
TEST_F(DesktopDialogsTest, EditorAndPreviews_Should_ReadWhereStartSays) {
  const test::TempFolder folder;
  const std::string picture = folder / "in.bmp";
  test::GradientBitmap(pf24bit, 8, 6).SaveToFile(picture);
  const std::atomic<bool> isCanceled = false;
  detail::SetWorkerProgram(folder / "missing");
  ASSERT_EQ(dialogs->start(Isolation::process, error), DesktopAnswer::confirmed) << error;
  EXPECT_THROW(detail::LoadForEditor(picture), Error);
  EXPECT_NE(detail::DecodePreview(picture, 8, isCanceled).problem, "");
  dialogs->end();
  ASSERT_EQ(dialogs->start(Isolation::none, error), DesktopAnswer::confirmed) << error;
  EXPECT_NE(detail::LoadForEditor(picture), nullptr);
  EXPECT_EQ(detail::DecodePreview(picture, 8, isCanceled).problem, "");
  dialogs->end();
  detail::SetWorkerProgram("");
}

TEST_F(DesktopDialogsTest, Exceptions_Should_BecomeTexts) {
  qputenv("QT_QPA_PLATFORM", "paper");
  EXPECT_EQ(dialogs->start(Isolation::process, error), DesktopAnswer::failed);
  EXPECT_THAT(error, testing::HasSubstr("(paper)"));
  error.clear();
  int32_t width = 8, height = 6;
  EXPECT_EQ(dialogs->editSize(width, height, error), DesktopAnswer::failed);
  EXPECT_THAT(error, testing::HasSubstr("(paper)"));
  EXPECT_EQ(width, 8);
  EXPECT_EQ(qApp, nullptr);
}

}  // namespace
}  // namespace rasterkit
