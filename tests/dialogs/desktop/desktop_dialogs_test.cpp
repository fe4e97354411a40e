#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/desktop/desktop_dialogs.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
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

TEST_F(DesktopDialogsTest, Confirmed_Should_SetTheAnswer) {
  ASSERT_EQ(dialogs->start(Isolation::process, error), DesktopAnswer::confirmed) << error;
  TBitmap pixels = test::GradientBitmap(pf24bit, 40, 30);
  const Picture picture = Picture::Of(pixels.Clone());
  ChooseCropOptions cropping;
  cropping.start = RecipeCrop{LengthUnit::pixels, 3, 2, 13, 9};
  std::optional<RecipeCrop> crop;
  EndWindow(QDialog::Accepted);
  EXPECT_EQ(dialogs->chooseCrop(pixels, picture, cropping, crop, error), DesktopAnswer::confirmed);
  EXPECT_EQ(crop, cropping.start);
  std::optional<AdjustColors> values;
  EndWindow(QDialog::Accepted);
  EXPECT_EQ(dialogs->chooseValues(pixels, {.contrast = 12}, values, error),
            DesktopAnswer::confirmed);
  EXPECT_EQ(values.value().contrast, 12);
  std::optional<MakeMono> mono;
  EndWindow(QDialog::Accepted);
  EXPECT_EQ(dialogs->chooseThreshold(pixels, {.threshold = 77}, mono, error),
            DesktopAnswer::confirmed);
  EXPECT_EQ(mono.value().threshold, 77);
  RecipeResize start;
  start.width = 20;
  std::optional<RecipeResize> size;
  EndWindow(QDialog::Accepted);
  EXPECT_EQ(dialogs->chooseSize(picture, start, size, error), DesktopAnswer::confirmed);
  EXPECT_EQ(PixelsOf(size.value(), picture).height, 15);
  dialogs->end();
  EXPECT_EQ(error, "");
}

TEST_F(DesktopDialogsTest, Canceled_Should_LeaveTheAnswerEmpty) {
  const test::TempFolder folder;
  const std::string file = folder / "in.bmp";
  TBitmap pixels = test::GradientBitmap(pf24bit, 40, 30);
  pixels.SaveToFile(file);
  const Picture picture = Picture::Open(file);
  ASSERT_EQ(dialogs->start(Isolation::none, error), DesktopAnswer::confirmed) << error;
  std::optional<RecipeCrop> crop;
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->chooseCrop(pixels, picture, {}, crop, error), DesktopAnswer::canceled);
  EXPECT_FALSE(crop);
  std::optional<AdjustColors> values;
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->chooseValues(pixels, {}, values, error), DesktopAnswer::canceled);
  EXPECT_FALSE(values);
  std::optional<MakeMono> mono;
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->chooseThreshold(pixels, {}, mono, error), DesktopAnswer::canceled);
  EXPECT_FALSE(mono);
  std::optional<RecipeResize> size;
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->chooseSize(picture, {}, size, error), DesktopAnswer::canceled);
  EXPECT_FALSE(size);
  std::optional<SavingChoice> saving;
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->chooseSaving(picture, {file, {}, false}, saving, error),
            DesktopAnswer::canceled);
  EXPECT_FALSE(saving);
  std::optional<std::string> chosen;
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->chooseFile(folder.Path(), false, chosen, error), DesktopAnswer::canceled);
  EXPECT_FALSE(chosen);
  std::optional<EditedPicture> edited;
  EditPictureOptions editing;
  editing.keepsJournal = false;
  EndWindow(QDialog::Rejected);
  EXPECT_EQ(dialogs->editPicture(file, editing, edited, error), DesktopAnswer::canceled);
  EXPECT_FALSE(edited);
  dialogs->end();
  EXPECT_EQ(error, "");
}

/// A worker program that is missing shows who needs one.
TEST_F(DesktopDialogsTest, Files_Should_BeReadWhereTheCallerSays) {
  const test::TempFolder folder;
  const std::string picture = folder / "in.bmp";
  test::GradientBitmap(pf24bit, 8, 6).SaveToFile(picture);
  const std::atomic<bool> isCanceled = false;
  detail::SetWorkerProgram(folder / "missing");
  ASSERT_EQ(dialogs->start(Isolation::process, error), DesktopAnswer::confirmed) << error;
  EXPECT_NE(detail::DecodePreview(picture, 8, isCanceled).problem, "");
  std::optional<EditedPicture> edited;
  EditPictureOptions editing;
  editing.keepsJournal = false;
  editing.isolation = Isolation::process;
  EXPECT_EQ(dialogs->editPicture(picture, editing, edited, error), DesktopAnswer::failed);
  EXPECT_THAT(error, testing::HasSubstr("missing"));
  dialogs->end();
  ASSERT_EQ(dialogs->start(Isolation::none, error), DesktopAnswer::confirmed) << error;
  EXPECT_EQ(detail::DecodePreview(picture, 8, isCanceled).problem, "");
  dialogs->end();
  detail::SetWorkerProgram("");
}

TEST_F(DesktopDialogsTest, Exceptions_Should_BecomeTexts) {
  qputenv("QT_QPA_PLATFORM", "paper");
  EXPECT_EQ(dialogs->start(Isolation::process, error), DesktopAnswer::failed);
  EXPECT_THAT(error, testing::HasSubstr("(paper)"));
  error.clear();
  std::optional<AdjustColors> values;
  TBitmap pixels = test::GradientBitmap(pf24bit, 4, 3);
  EXPECT_EQ(dialogs->chooseValues(pixels, {}, values, error), DesktopAnswer::failed);
  EXPECT_THAT(error, testing::HasSubstr("(paper)"));
  EXPECT_FALSE(values);
  EXPECT_EQ(qApp, nullptr);
}

}  // namespace
}  // namespace rasterkit
