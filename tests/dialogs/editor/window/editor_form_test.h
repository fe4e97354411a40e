#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QTest>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/editor/window/picture_editor_form.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/controls/paint_box.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {

/// An editor with a real file in a folder of its own, and windows that answer at once.
class EditorFormTest : public testing::Test {
 protected:
  EditorFormTest() {
    options.keepsJournal = false;
    windows.crop = [this](TBitmap&, const Picture&, const ChooseCropOptions& crop, QWidget*) {
      cropOptions = crop;
      return cropAnswer;
    };
    windows.values = [this](const TBitmap&, QWidget*) { return valuesAnswer; };
    windows.threshold = [this](const TBitmap&, QWidget*) { return monoAnswer; };
    windows.size = [this](const Picture&, QWidget*) { return sizeAnswer; };
    windows.saving = [this](const Picture&, const SavingStart& start, QWidget*) {
      savingStart = start;
      return savingAnswer;
    };
    windows.settings = [this](const Picture&, const SavingChoice&, QWidget*) {
      return settingsAnswer;
    };
    windows.fileToOpen = [this](const std::string&, bool, QWidget*) { return fileAnswer; };
    windows.document = [this](const QUrl& url) {
      openedDocument = url;
      return opensDocuments;
    };
  }

  /// A picture whose pixels all differ from its mirrored and turned ones.
  std::string WritePicture(const std::string& name, int width = 60, int height = 40) {
    const std::string file = folder / name;
    Picture::Of(std::make_unique<TBitmap>(GradientBitmap(pf24bit, width, height))).Save(file);
    return file;
  }

  void Make() { form = std::make_unique<TFormPictureEditor>(options, windows); }

  /// Opens a file and shows the window, as EditPicture does.
  void Show(const std::string& file, int page = 1) {
    if (!form) Make();
    form->Model().Open(file, page);
    ASSERT_TRUE(ShowSettled(*form));
    form->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    WaitForJobs();
    Settle(*form);
  }

  void WaitForJobs() const {
    constexpr int kMost = 120'000;
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return !form->IsJobRunning() && !form->Model().IsWorking(); }, kMost));
  }

  template <typename Widget>
  Widget& Find(const char* name) const {
    auto* widget = form->findChild<Widget*>(name);
    if (widget == nullptr) throw std::runtime_error(std::string("no ") + name);
    return *widget;
  }
  QAction& Action(const char* name) const {
    return Find<QAction>((std::string("Action") + name).c_str());
  }
  QAbstractButton& Button(TNavigateButton which) const {
    return Find<TNavigator>("NaviResult").Button(which);
  }
  TPaintBox& Box() const { return Find<TPaintBox>("PaintBoxPicture"); }
  QString Text(const char* label) const { return Find<QLabel>(label).text(); }

  void Press(Qt::Key key, Qt::KeyboardModifiers keys = Qt::NoModifier) const {
    QWidget* focus = form->focusWidget();
    QTest::keyClick(focus != nullptr ? focus : form.get(), key, keys);
  }
  /// Presses a tool and waits for what it starts.
  void Use(const char* tool) const {
    QAbstractButton& button = Find<QAbstractButton>((std::string("Tool") + tool).c_str());
    ASSERT_TRUE(button.isEnabled()) << tool;
    QTest::mouseClick(&button, Qt::LeftButton);
    WaitForJobs();
  }

  TempFolder folder;
  EditPictureOptions options;
  EditorWindows windows;
  std::optional<RecipeCrop> cropAnswer;
  ChooseCropOptions cropOptions;
  std::optional<AdjustColors> valuesAnswer;
  std::optional<MakeMono> monoAnswer;
  std::optional<RecipeResize> sizeAnswer;
  std::optional<SavingChoice> savingAnswer;
  SavingStart savingStart;
  std::optional<RecipeSave> settingsAnswer;
  std::string fileAnswer;
  QUrl openedDocument;
  bool opensDocuments = true;
  std::unique_ptr<TFormPictureEditor> form;
};

inline Picture OpenAgain(const std::string& file) {
  return Picture::Open(file);
}

}  // namespace rasterkit::test
