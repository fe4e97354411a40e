#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgext/form_save_dlg_ext.h>
#include <rasterkit/qt/files/file_list.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {

/// The save window over a folder with "a.bmp", "b.png" and the folder "maps", in which "c.png" is.
class SaveWindowTest : public testing::Test {
 protected:
  static constexpr int kPatience = 20000;

  SaveWindowTest() {
    folder.Write("a.bmp", "x");
    folder.Write("b.png", "x");
    std::filesystem::create_directory(folder.Path() / "maps");
    folder.Write("maps/c.png", "x");
    form.SetInitialDir(folder.Path().string());
    form.SetDefaultExt(".png");
  }

  template <typename Widget>
  Widget& Find(const char* name) const {
    return *form.findChild<Widget*>(name);
  }
  TFileListView& List() const { return Find<TFileListView>("FileListView"); }
  QTreeView& Report() const { return Find<QTreeView>("FileListReport"); }
  QLineEdit& Name() const { return Find<QLineEdit>("EditFilename"); }
  QLineEdit& Path() const { return Find<QLineEdit>("EditPath"); }
  QComboBox& Filter() const { return Find<QComboBox>("FilterComboBox"); }
  std::string In(const std::string& name) const { return folder.Path().string() + "/" + name; }

  void WaitForList() const {
    ASSERT_TRUE(QTest::qWaitFor([&] { return List().IsFilled(); }, kPatience));
  }
  void Show() {
    form.show();
    WaitForList();
  }
  void Click(const char* button) const {
    QTest::mouseClick(form.findChild<QWidget*>(button), Qt::LeftButton);
  }
  static void Replace(QLineEdit& edit, const std::string& text) {
    edit.setFocus();
    edit.selectAll();
    if (text.empty()) QTest::keyClick(&edit, Qt::Key_Delete);
    QTest::keyClicks(&edit, QString::fromStdString(text));
  }
  /// The middle of a row in report style.
  QPoint RowPlace(const std::string& name) const {
    const std::vector<std::string> names = List().Names();
    const auto row = std::find(names.begin(), names.end(), name) - names.begin();
    return Report().visualRect(Report().model()->index(int(row), 0)).center();
  }
  void ClickRow(const std::string& name) const {
    QTest::mouseClick(Report().viewport(), Qt::LeftButton, {}, RowPlace(name));
  }
  void DoubleClickRow(const std::string& name) const {
    ClickRow(name);
    QTest::mouseDClick(Report().viewport(), Qt::LeftButton, {}, RowPlace(name));
  }

  TempFolder folder;
  TFormSaveDlgExt form;
};

}  // namespace rasterkit::test
