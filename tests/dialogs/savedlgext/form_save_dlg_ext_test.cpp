#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/savedlgext/form_save_dlg_ext.h>
#include <rasterkit/qt/file_list.h>

#include "tests/support/forms/form_events.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::WhenModal;
using testing::ElementsAre;

constexpr int kPatience = 20000;

class FormSaveDlgExtTest : public testing::Test {
 protected:
  void SetUp() override {
    folder.Write("a.bmp", "x");
    folder.Write("b.png", "x");
    std::filesystem::create_directory(folder.Path() / "maps");
    form.SetInitialDir(folder.Path().string());
  }

  template <typename Widget>
  Widget& Find(const char* name) const {
    return *form.findChild<Widget*>(name);
  }
  TFileListView& List() const { return Find<TFileListView>("FileListView"); }
  QLineEdit& Name() const { return Find<QLineEdit>("EditFilename"); }
  void WaitForList() const {
    ASSERT_TRUE(QTest::qWaitFor([&] { return List().IsFilled(); }, kPatience));
  }
  std::string Place() const { return folder.Path().string() + "/"; }

  test::TempFolder folder;
  TFormSaveDlgExt form;
};

TEST_F(FormSaveDlgExtTest, Controls_Should_HaveTheirNamesAndTexts) {
  EXPECT_EQ(form.windowTitle(), "Save Graphics");
  const auto label = [&](const char* edit) {
    for (const QLabel* label : form.findChildren<QLabel*>()) {
      if (label->buddy() == form.findChild<QWidget*>(edit)) return label->text().remove('&');
    }
    return QString();
  };
  EXPECT_EQ(label("EditFilename"), "File name:");
  EXPECT_EQ(label("FilterComboBox"), "Filter: ");
  EXPECT_EQ(label("EditPath"), "Path:");
  EXPECT_EQ(Find<QPushButton>("OKButton").text().remove('&'), "Save");
  EXPECT_TRUE(Find<QPushButton>("OKButton").isDefault());
  EXPECT_EQ(Find<QPushButton>("CancelButton").text().remove('&'), "Cancel");
  EXPECT_EQ(Find<QPushButton>("ButtonOptions").text().remove('&'), "Options");
  EXPECT_EQ(Find<QToolButton>("ButtonPath").text(), "..");
  EXPECT_EQ(Find<QToolButton>("SBList").toolTip(), "List");
  EXPECT_EQ(Find<QToolButton>("SBDetails").toolTip(), "Detail");
  EXPECT_EQ(List().ViewStyle(), vsReport);
  EXPECT_EQ(form.GetFilter(), "All files (*.*)|*.*");
  EXPECT_TRUE(form.GetConfirmOverwrite());
  EXPECT_FALSE(form.GetAcceptWithoutChecks());
}

TEST_F(FormSaveDlgExtTest, Save_Should_CloseWithTheName) {
  form.SetDefaultExt(".png");
  WhenModal([&](QWidget&) {
    WaitForList();
    EXPECT_THAT(List().Names(), ElementsAre("maps", "a.bmp", "b.png"));
    QTest::keyClicks(&Name(), "plan.bmp");
    QTest::keyClick(&Name(), Qt::Key_Return);
  });
  EXPECT_EQ(form.ShowModal(), mrOk);
  EXPECT_EQ(form.GetFileName(), Place() + "plan.png");
}

}  // namespace
}  // namespace rasterkit
