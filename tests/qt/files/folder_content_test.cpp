#include <algorithm>
#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <rasterkit/qt/files/folder_content.h>
#include <rasterkit/qt/qt_text.h>

#include "tests/support/temp_folder.h"

namespace rasterkit::detail {
namespace {

using testing::ElementsAre;

const std::atomic<bool> kGoOn = false;

std::vector<std::string> Names(const FolderContent& content) {
  std::vector<std::string> names;
  for (const FolderEntry& entry : content.entries) names.push_back(FromQt(entry.name));
  return names;
}

/// Drops root's rights for a test; permissions do not apply to root.
class UnprivilegedUser {
 public:
  UnprivilegedUser() : wasRoot_(geteuid() == 0 && seteuid(65534) == 0) {}
  ~UnprivilegedUser() {
    if (wasRoot_ && seteuid(0) != 0) std::abort();
  }
  UnprivilegedUser(const UnprivilegedUser&) = delete;
  UnprivilegedUser& operator=(const UnprivilegedUser&) = delete;

 private:
  const bool wasRoot_;
};

TEST(ReadFolder, Entries_Should_ComeWithKindSizeAndTime) {
  const test::TempFolder folder;
  folder.Write("plan.png", "12345");
  std::filesystem::create_directory(folder.Path() / "maps");
  const FolderContent content = ReadFolder(folder.Path().string(), kGoOn);
  EXPECT_EQ(content.state, FolderState::isRead);
  ASSERT_THAT(Names(content), ElementsAre("maps", "plan.png"));
  EXPECT_TRUE(content.entries[0].isFolder);
  EXPECT_FALSE(content.entries[1].isFolder);
  EXPECT_EQ(content.entries[1].size, 5);
  EXPECT_GT(content.entries[1].time, 0);
  EXPECT_EQ(content, ReadFolder(folder.Path().string() + "/", kGoOn));
}

TEST(ReadFolder, Names_Should_BeSortedAsPeopleSort) {
  const test::TempFolder folder;
  for (const char* name : {"plan10.png", "Plan2.png", "plan1.png", "Zeta", "alpha"})
    folder.Write(name, "x");
  EXPECT_THAT(Names(ReadFolder(folder.Path().string(), kGoOn)),
              ElementsAre("alpha", "plan1.png", "Plan2.png", "plan10.png", "Zeta"));
}

TEST(ReadFolder, NamesInAnyScript_Should_BeListed) {
  const test::TempFolder folder;
  for (const char* name :
       {"Süd.png", "地図.png", "خريطة.png", "🗺.png", "a b", "x\ny", "a.b.c", "dot."})
    folder.Write(name, "x");
  folder.Write("\xff\xfe.png", "x");  // Not UTF-8.
  EXPECT_EQ(ReadFolder(folder.Path().string(), kGoOn).entries.size(), 9u);
}

TEST(ReadFolder, HiddenFiles_Should_BeLeftOut) {
  const test::TempFolder folder;
  folder.Write(".hidden", "x");
  std::filesystem::create_directory(folder.Path() / ".git");
  EXPECT_TRUE(ReadFolder(folder.Path().string(), kGoOn).entries.empty());
}

TEST(ReadFolder, Links_Should_BeWhatTheyLeadTo) {
  const test::TempFolder folder;
  std::filesystem::create_directory_symlink("/", folder.Path() / "a");
  std::filesystem::create_symlink("missing", folder.Path() / "b");
  const FolderContent content = ReadFolder(folder.Path().string(), kGoOn);
  ASSERT_THAT(Names(content), ElementsAre("a", "b"));
  EXPECT_TRUE(content.entries[0].isFolder);
  EXPECT_FALSE(content.entries[1].isFolder);
  EXPECT_EQ(content.entries[1].time, 0);
}

TEST(ReadFolder, AMissingFolder_Should_BeGone) {
  const test::TempFolder folder;
  EXPECT_EQ(ReadFolder(folder / "missing", kGoOn).state, FolderState::isGone);
}

TEST(ReadFolder, AFolderThatMayNotBeRead_Should_SayWhy) {
  const test::TempFolder folder;
  const std::filesystem::path locked = folder.Path() / "locked";
  std::filesystem::create_directory(locked);
  std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
  std::filesystem::permissions(locked, std::filesystem::perms::none);
  FolderContent content;
  {
    const UnprivilegedUser user;
    content = ReadFolder(locked.string(), kGoOn);
  }
  EXPECT_EQ(content.state, FolderState::isUnreadable);
  EXPECT_FALSE(content.reason.isEmpty());
  EXPECT_TRUE(content.entries.empty());
}

TEST(ReadFolder, WhatIsNoFolder_Should_SayWhy) {
  const test::TempFolder folder;
  const std::string file = folder.Write("plan.png", "x");
  std::filesystem::create_symlink("loop", folder.Path() / "loop");
  for (const std::string& name : {file, folder / "loop", folder / std::string(300, 'x')}) {
    const FolderContent content = ReadFolder(name, kGoOn);
    EXPECT_EQ(content.state, FolderState::isUnreadable) << name;
    EXPECT_FALSE(content.reason.isEmpty());
  }
}

TEST(ReadFolder, Canceling_Should_EndIt) {
  const std::atomic<bool> isCanceled = true;
  EXPECT_EQ(ReadFolder("/", isCanceled).state, FolderState::isReading);
}

}  // namespace
}  // namespace rasterkit::detail
