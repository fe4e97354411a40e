#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>
#include <algorithm>
#include <filesystem>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/qt/files/file_list.h>

#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace fs = std::filesystem;

constexpr int kPatience = 20000;

std::string Numbered(const char* name, int number) {
  return std::string(name).append(std::to_string(number));
}

class FileListTest : public testing::Test {
 protected:
  FileListTest() {
    folder.Write("plan.bmp", "12345");
    folder.Write("Atlas.png", "1");
    folder.Write("plan10.png", "123");
    fs::create_directory(folder.Path() / "Zone");
    fs::create_directory(folder.Path() / "area");
    folder.Write("Zone/inner.png", "1");
    SetTime("plan.bmp", -3);
    SetTime("Atlas.png", -1);
    SetTime("plan10.png", -2);
    list.resize(500, 300);
  }

  void SetTime(const char* name, int days) const {
    fs::last_write_time(folder.Path() / name,
                        fs::file_time_type::clock::now() + std::chrono::hours(24 * days));
  }
  void Open(const std::string& directory) {
    list.SetDirectory(directory);
    list.show();
    WaitUntil([&] { return list.IsFilled(); });
  }
  void Open() { Open(folder.Path().string()); }
  static void WaitUntil(const std::function<bool()>& holds) {
    ASSERT_TRUE(QTest::qWaitFor(holds, kPatience));
  }
  QTreeView& Report() const { return *list.findChild<QTreeView*>("FileListReport"); }
  QListView& NamesView() const { return *list.findChild<QListView*>("FileListNames"); }
  QAbstractItemView& View() const {
    if (list.ViewStyle() == vsReport) return Report();
    return NamesView();
  }
  QPoint PlaceOf(const std::string& name) const {
    const std::vector<std::string> names = list.Names();
    const auto row = std::find(names.begin(), names.end(), name) - names.begin();
    return View().visualRect(View().model()->index(int(row), 0)).center();
  }
  void Click(const std::string& name) const {
    QTest::mouseClick(View().viewport(), Qt::LeftButton, {}, PlaceOf(name));
  }
  void DoubleClick(const std::string& name) const {
    Click(name);
    QTest::mouseDClick(View().viewport(), Qt::LeftButton, {}, PlaceOf(name));
  }
  /// A click on a column's title.
  void SortBy(int column) const {
    const QHeaderView& header = *Report().header();
    const QPoint place(header.sectionViewportPosition(column) + 10, header.height() / 2);
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, place);
  }
  std::string In(const std::string& name) const { return folder.Path().string() + "/" + name; }

  test::TempFolder folder;
  TFileListView list;
};

TEST_F(FileListTest, Start_Should_BeTheCurrentFolderInReportStyle) {
  EXPECT_EQ(list.Directory(), fs::current_path().string() + "/");
  EXPECT_EQ(list.Mask(), "*.*");
  EXPECT_EQ(list.ViewStyle(), vsReport);
  EXPECT_EQ(list.SelectedName(), "");
}

TEST_F(FileListTest, Directory_Should_AlwaysEndWithASeparator) {
  Open();
  EXPECT_EQ(list.Directory(), In(""));
  list.SetDirectory(In(""));
  EXPECT_EQ(list.Directory(), In(""));
  list.SetDirectory("");
  EXPECT_EQ(list.Directory(), In(""));
  list.SetDirectory("/");
  EXPECT_EQ(list.Directory(), "/");
}

TEST_F(FileListTest, Names_Should_HaveFoldersFirst) {
  Open();
  EXPECT_THAT(list.Names(), ElementsAre("area", "Zone", "Atlas.png", "plan.bmp", "plan10.png"));
}

TEST_F(FileListTest, Mask_Should_ChooseFilesAndNoFolders) {
  Open();
  list.SetMask("*.PNG");
  EXPECT_THAT(list.Names(), ElementsAre("area", "Zone", "Atlas.png", "plan10.png"));
  list.SetMask("*.tif;*.bmp");
  EXPECT_THAT(list.Names(), ElementsAre("area", "Zone", "plan.bmp"));
  list.SetMask("*.*");
  EXPECT_THAT(list.Names(), SizeIs(5));
}

TEST_F(FileListTest, Report_Should_ShowSizeAndDate) {
  Open();
  const QAbstractItemModel& model = *Report().model();
  ASSERT_EQ(model.columnCount(), 3);
  const auto title = [&](int column) {
    return model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
  };
  EXPECT_EQ(title(0), "Name");
  EXPECT_EQ(title(1), "Size");
  EXPECT_EQ(title(2), "Date");
  EXPECT_EQ(model.index(0, 1).data().toString(), "");
  EXPECT_EQ(model.index(3, 1).data().toString(), QLocale().formattedDataSize(5));
  EXPECT_FALSE(model.index(3, 2).data().toString().isEmpty());
}

TEST_F(FileListTest, Columns_Should_SortAndKeepFoldersFirst) {
  Open();
  SortBy(1);
  EXPECT_THAT(list.Names(), ElementsAre("area", "Zone", "Atlas.png", "plan10.png", "plan.bmp"));
  SortBy(1);
  EXPECT_THAT(list.Names(), ElementsAre("area", "Zone", "plan.bmp", "plan10.png", "Atlas.png"));
  SortBy(2);
  const std::vector<std::string> byDate = list.Names();
  EXPECT_THAT(std::vector(byDate.begin() + 2, byDate.end()),
              ElementsAre("plan.bmp", "plan10.png", "Atlas.png"));
  SortBy(0);
  SortBy(0);
  EXPECT_THAT(list.Names(), ElementsAre("Zone", "area", "plan10.png", "plan.bmp", "Atlas.png"));
}

TEST_F(FileListTest, Order_Should_HoldForWhatComesLater) {
  Open();
  SortBy(1);
  folder.Write("b.png", "12");
  WaitUntil([&] { return list.Names().size() == 6; });
  EXPECT_EQ(list.Names()[3], "b.png");
}

TEST_F(FileListTest, Styles_Should_ShowTheSameAndKeepTheSelection) {
  Open();
  Click("plan.bmp");
  list.SetViewStyle(vsList);
  EXPECT_EQ(list.ViewStyle(), vsList);
  EXPECT_TRUE(NamesView().isVisible());
  EXPECT_FALSE(Report().isVisible());
  EXPECT_EQ(list.SelectedName(), "plan.bmp");
  Click("Atlas.png");
  EXPECT_EQ(list.SelectedName(), "Atlas.png");
  list.SetViewStyle(vsReport);
  EXPECT_EQ(list.SelectedName(), "Atlas.png");
  EXPECT_THAT(list.Names(), SizeIs(5));
}

TEST_F(FileListTest, Selecting_Should_BeTold) {
  Open();
  for (const TViewStyle style : {vsReport, vsList}) {
    list.SetViewStyle(style);
    QSignalSpy selections(&list, &TFileListView::entrySelected);
    Click("Zone");
    ASSERT_GE(selections.size(), 1);
    EXPECT_EQ(selections.back()[0].toString(), "Zone");
    EXPECT_TRUE(selections.back()[1].toBool());
    EXPECT_TRUE(list.IsFolderSelected());
    QTest::keyClick(&View(), Qt::Key_Down);
    EXPECT_EQ(selections.back()[0].toString(), "Atlas.png");
    EXPECT_FALSE(selections.back()[1].toBool());
    EXPECT_FALSE(list.IsFolderSelected());
  }
}

TEST_F(FileListTest, DoubleClick_Should_EnterAFolder) {
  for (const TViewStyle style : {vsReport, vsList}) {
    Open();
    list.SetViewStyle(style);
    QSignalSpy entries(&list, &TFileListView::directoryEntered);
    DoubleClick("Zone");
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0][0].toString().toStdString(), In("Zone/"));
    EXPECT_EQ(list.Directory(), In("Zone/"));
    WaitUntil([&] { return list.IsFilled(); });
    EXPECT_THAT(list.Names(), ElementsAre("inner.png"));
    EXPECT_EQ(list.SelectedName(), "");
  }
}

TEST_F(FileListTest, DoubleClickAndEnter_Should_ActivateAFile) {
  Open();
  QSignalSpy activations(&list, &TFileListView::fileActivated);
  DoubleClick("plan.bmp");
  QTest::keyClick(&View(), Qt::Key_Return);
  QTest::keyClick(&View(), Qt::Key_Enter, Qt::KeypadModifier);
  ASSERT_EQ(activations.size(), 3);
  for (const auto& activation : activations) EXPECT_EQ(activation[0].toString(), "plan.bmp");
}

TEST_F(FileListTest, UpKeys_Should_EnterTheFolderAboveWithTheOldOneSelected) {
  Open(In("Zone"));
  QSignalSpy selections(&list, &TFileListView::entrySelected);
  QTest::keyClick(&View(), Qt::Key_Backspace);
  WaitUntil([&] { return list.IsFilled(); });
  EXPECT_EQ(list.Directory(), In(""));
  EXPECT_EQ(list.SelectedName(), "Zone");
  QTest::keyClick(&View(), Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(list.Directory(), folder.Path().parent_path().string() + "/");
  // The user chose none of them.
  EXPECT_EQ(selections.size(), 0);
}

TEST_F(FileListTest, GoUp_Should_StayInTheTopmostFolder) {
  list.SetDirectory("/");
  QSignalSpy entries(&list, &TFileListView::directoryEntered);
  list.GoUp();
  EXPECT_EQ(list.Directory(), "/");
  EXPECT_EQ(entries.size(), 0);
}

TEST_F(FileListTest, ParentOf_Should_BeTheFolderAbove) {
  EXPECT_EQ(TFileListView::ParentOf("/maps/north/"), "/maps/");
  EXPECT_EQ(TFileListView::ParentOf("/maps/north"), "/maps/");
  EXPECT_EQ(TFileListView::ParentOf("/maps/"), "/");
  EXPECT_EQ(TFileListView::ParentOf("/"), "/");
  EXPECT_EQ(TFileListView::ParentOf("/maps/../plans/north/"), "/plans/");
  EXPECT_EQ(TFileListView::ParentOf("north/"), fs::current_path().string() + "/");
}

TEST_F(FileListTest, Delete_Should_BeToldWithItsShift) {
  Open();
  QSignalSpy deletions(&list, &TFileListView::deletePressed);
  QTest::keyClick(&View(), Qt::Key_Delete);
  QTest::keyClick(&View(), Qt::Key_Delete, Qt::ShiftModifier);
  QTest::keyClick(&View(), Qt::Key_Delete, Qt::KeypadModifier);
  QTest::keyClick(&View(), Qt::Key_Delete, Qt::ControlModifier);
  ASSERT_EQ(deletions.size(), 3);
  EXPECT_FALSE(deletions[0][0].toBool());
  EXPECT_TRUE(deletions[1][0].toBool());
  EXPECT_FALSE(deletions[2][0].toBool());
}

// Changes on disk

TEST_F(FileListTest, FilesThatComeAndGo_Should_BeFollowed) {
  Open();
  folder.Write("new.png", "1");
  WaitUntil([&] { return list.Names().size() == 6; });
  fs::rename(folder.Path() / "new.png", folder.Path() / "newer.png");
  fs::remove(folder.Path() / "Atlas.png");
  WaitUntil([&] { return list.Names().size() == 5; });
  EXPECT_THAT(list.Names(), ElementsAre("area", "Zone", "newer.png", "plan.bmp", "plan10.png"));
}

TEST_F(FileListTest, ASizeThatChanges_Should_BeFollowed) {
  Open();
  folder.Write("plan.bmp", "1234567");
  const QModelIndex size = Report().model()->index(3, 1);
  WaitUntil([&] { return size.data().toString() == QLocale().formattedDataSize(7); });
}

TEST_F(FileListTest, Changes_Should_LeaveSelectionAndTellNobody) {
  Open();
  Click("plan.bmp");
  QSignalSpy selections(&list, &TFileListView::entrySelected);
  folder.Write("a.png", "1");
  WaitUntil([&] { return list.Names().size() == 6; });
  EXPECT_EQ(list.SelectedName(), "plan.bmp");
  fs::remove(folder.Path() / "plan.bmp");
  WaitUntil([&] { return list.Names().size() == 5; });
  EXPECT_EQ(list.SelectedName(), "");
  EXPECT_EQ(selections.size(), 0);
}

TEST_F(FileListTest, AFolderThatVanishes_Should_SaySoAndBeFoundAgain) {
  Open(In("Zone"));
  fs::remove_all(folder.Path() / "Zone");
  WaitUntil([&] { return list.Notice() == "There is no such folder"; });
  EXPECT_THAT(list.Names(), IsEmpty());
  auto& notice = *list.findChild<QLabel*>("FileListNotice");
  EXPECT_TRUE(notice.isVisible());
  EXPECT_EQ(Report().accessibleDescription(), "There is no such folder");
  fs::create_directory(folder.Path() / "Zone");
  folder.Write("Zone/again.png", "1");
  WaitUntil([&] { return list.Names() == std::vector<std::string>{"again.png"}; });
  EXPECT_EQ(list.Notice(), "");
  EXPECT_FALSE(notice.isVisible());
}

TEST_F(FileListTest, WhatCannotBeRead_Should_SayWhy) {
  Open(In("plan.bmp"));
  EXPECT_THAT(list.Notice(), testing::StartsWith("The folder cannot be read: "));
  Open(In("missing"));
  EXPECT_EQ(list.Notice(), "There is no such folder");
  list.SetMask("*.tif");
  Open(In("Zone"));
  EXPECT_EQ(list.Notice(), "There are no files of this kind");
}

TEST_F(FileListTest, Refresh_Should_ReadAFolderThatNobodyTellsOf) {
  Open();
  folder.Write("new.png", "1");
  QTest::keyClick(&View(), Qt::Key_F5);
  WaitUntil([&] { return list.Names().size() == 6; });
}

TEST_F(FileListTest, Destruction_Should_BeSafe_When_TheFolderIsBeingRead) {
  Open();
  const std::vector<std::string> before = list.Names();
  for (int i = 0; i < 20; ++i) {
    TFileListView other;
    other.SetDirectory("/usr/lib");
    QTest::qWait(i % 3);
  }
  // No late result reaches another list, and the next list is read as usual.
  EXPECT_EQ(list.Names(), before);
  EXPECT_EQ(list.Directory(), In(""));
  TFileListView next;
  next.SetDirectory(In("Zone"));
  next.show();
  WaitUntil([&] { return next.IsFilled(); });
  EXPECT_THAT(next.Names(), ElementsAre("inner.png"));
}

TEST_F(FileListTest, InnerLists_Should_TakeOverNameAndTip) {
  list.setAccessibleName("Files");
  list.setToolTip("Choose one");
  Open();
  for (const QWidget* view :
       {static_cast<QWidget*>(&Report()), static_cast<QWidget*>(&NamesView())}) {
    EXPECT_EQ(view->accessibleName(), "Files");
    EXPECT_EQ(view->toolTip(), "Choose one");
  }
}

TEST_F(FileListTest, Changes_Should_LeaveThePlaceThatIsSeen) {
  for (int i = 0; i < 100; ++i) folder.Write(Numbered("z", i), "1");
  Open();
  QTest::keyClick(&View(), Qt::Key_Home);
  QTest::keyClick(&View(), Qt::Key_End);
  EXPECT_EQ(list.SelectedName(), "z99");
  for (const int place : {0, 7}) {
    Report().verticalScrollBar()->setValue(place);
    const size_t before = list.Names().size();
    folder.Write(Numbered("zz", place), "1");
    WaitUntil([&] { return list.Names().size() == before + 1; });
    EXPECT_EQ(Report().verticalScrollBar()->value(), place);
    EXPECT_EQ(list.SelectedName(), "z99");
  }
}

TEST_F(FileListTest, GoUp_Should_ShowTheFolderThatWasLeft) {
  for (int i = 0; i < 100; ++i) fs::create_directory(folder.Path() / Numbered("m", i));
  Open(In("Zone"));
  list.GoUp();
  WaitUntil([&] { return list.IsFilled(); });
  EXPECT_EQ(list.SelectedName(), "Zone");
  EXPECT_TRUE(Report().viewport()->rect().contains(PlaceOf("Zone")));
}

// Many files

class LargeFolder : public testing::Test {
 protected:
  static constexpr int kFiles = 50000;
  static void SetUpTestSuite() {
    folder_ = std::make_unique<test::TempFolder>();
    for (int i = 0; i < kFiles; ++i)
      folder_->Write(Numbered("plan ", i).append(i % 2 == 0 ? ".png" : ".bmp"), "");
  }
  static void TearDownTestSuite() { folder_.reset(); }

  const test::TempFolder& folder = *folder_;

 private:
  inline static std::unique_ptr<test::TempFolder> folder_;
};

TEST_F(LargeFolder, List_Should_BeFilledAndStayUsable) {
  TFileListView list;
  list.SetDirectory(folder.Path().string());
  list.show();
  ASSERT_TRUE(QTest::qWaitFor([&] { return list.IsFilled(); }, kPatience));
  EXPECT_THAT(list.Names(), SizeIs(kFiles));
  EXPECT_EQ(list.Names().front(), "plan 0.png");
  EXPECT_EQ(list.Names().back(), "plan 49999.bmp");
  auto& report = *list.findChild<QTreeView*>("FileListReport");
  QTest::keyClick(&report, Qt::Key_Home);
  QTest::keyClick(&report, Qt::Key_End);
  EXPECT_EQ(list.SelectedName(), "plan 49999.bmp");
  list.SetMask("*.png");
  EXPECT_THAT(list.Names(), SizeIs(kFiles / 2));
  list.SetMask("*.*");
  EXPECT_EQ(list.SelectedName(), "plan 49999.bmp");
  list.SetViewStyle(vsList);
  auto& names = *list.findChild<QListView*>("FileListNames");
  QTest::keyClick(&names, Qt::Key_Home);
  EXPECT_EQ(list.SelectedName(), "plan 0.png");
  folder.Write("new.png", "");
  EXPECT_TRUE(QTest::qWaitFor([&] { return list.Names().size() == kFiles + 1; }, kPatience));
  EXPECT_EQ(list.SelectedName(), "plan 0.png");
}

TEST_F(LargeFolder, List_Should_BeReadToItsEnd_When_FilesKeepComing) {
  TFileListView list;
  list.SetDirectory(folder.Path().string());
  list.show();
  int written = 0;
  const bool isFilled = QTest::qWaitFor(
      [&] {
        folder.Write(Numbered("new ", written++), "");
        return list.IsFilled();
      },
      kPatience);
  EXPECT_TRUE(isFilled);
}

}  // namespace
}  // namespace rasterkit
