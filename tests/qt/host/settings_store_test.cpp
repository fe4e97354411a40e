#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <rasterkit/qt/host/settings_store.h>

namespace rasterkit {
namespace {

class SettingsStoreTest : public testing::Test {
 protected:
  std::string File() const { return folder_.filePath("host.ini").toStdString(); }

  void WriteFile(const QByteArray& bytes) const {
    QFile file(QString::fromStdString(File()));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
  }
  QByteArray ReadFile() const {
    QFile file(QString::fromStdString(File()));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }

  QTemporaryDir folder_;
};

TEST_F(SettingsStoreTest, Read_Should_GiveWhatWasWritten) {
  SettingsStore store(File());
  store.Write("Settings", "Form.Left", "-12");
  store.Write("Settings", "Text", "Größe; \"quoted\" = 5, 6 % 7");
  EXPECT_EQ(store.Read("Settings", "Form.Left"), "-12");
  EXPECT_EQ(store.Read("Settings", "Text"), "Größe; \"quoted\" = 5, 6 % 7");
  EXPECT_EQ(SettingsStore(File()).Read("Settings", "Form.Left"), "-12");
}

TEST_F(SettingsStoreTest, Write_Should_MakeASectionOfAnIniFile) {
  SettingsStore(File()).Write("Settings", "Form.Left", "7");
  EXPECT_EQ(ReadFile(), "[Settings]\nForm.Left=7\n");
}

TEST_F(SettingsStoreTest, Write_Should_LeaveOtherSectionsAlone) {
  WriteFile("[Other]\nName=old\n\n[Settings]\nForm.Left=1\n");
  SettingsStore store(File());
  store.Write("Settings", "Form.Left", "2");
  EXPECT_EQ(store.Read("Other", "Name"), "old");
  EXPECT_EQ(store.Read("Settings", "Form.Left"), "2");
}

TEST_F(SettingsStoreTest, Read_Should_GiveNothing_When_NothingIsKept) {
  EXPECT_EQ(SettingsStore(File()).Read("Settings", "Form.Left"), std::nullopt);
  EXPECT_TRUE(ReadFile().isEmpty());
}

TEST_F(SettingsStoreTest, Read_Should_GiveNothing_When_TheFileIsNoIniFile) {
  WriteFile(QByteArray("\x00\xff[[[=\n]\n==", 11));
  EXPECT_EQ(SettingsStore(File()).Read("Settings", "Form.Left"), std::nullopt);
}

TEST_F(SettingsStoreTest, Read_Should_KeepCommas_When_TheFileWasWrittenByHand) {
  WriteFile("[Settings]\nList=1, 2,3\n");
  EXPECT_EQ(SettingsStore(File()).Read("Settings", "List"), "1, 2, 3");
}

TEST_F(SettingsStoreTest, Write_Should_BeLost_When_TheFileCannotBeWritten) {
  SettingsStore store("/dev/null/host.ini");
  store.Write("Settings", "Form.Left", "1");
  EXPECT_EQ(store.Read("Settings", "Form.Left"), std::nullopt);
}

TEST_F(SettingsStoreTest, Key_Should_StayInItsSection_When_ItHoldsASlash) {
  SettingsStore store(File());
  store.Write("Settings", "a/b", "1");
  EXPECT_EQ(store.Read("Settings", "a/b"), "1");
  EXPECT_EQ(ReadFile(), "[Settings]\na_b=1\n");
}

TEST(SettingsStore, DefaultFile_Should_BeAnIniFile) {
  EXPECT_TRUE(SettingsStore::DefaultFile().ends_with(".ini"));
}

}  // namespace
}  // namespace rasterkit
