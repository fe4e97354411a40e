#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/journal/journal_file.h>

#include "tests/support/environment.h"
#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::ReadFile;
using test::TempFolder;

TEST(JournalFolder, Should_FollowTheEnvironment) {
  {
    const test::Environment state("XDG_STATE_HOME", "/state");
    EXPECT_EQ(JournalFolder(), "/state/rasterkit/journal");
  }
  for (const char* unusable : {"", "relative"}) {
    const test::Environment state("XDG_STATE_HOME", unusable);
    const test::Environment home("HOME", "/home/me");
    EXPECT_EQ(JournalFolder(), "/home/me/.local/state/rasterkit/journal");
  }
  const test::Environment state("XDG_STATE_HOME", "");
  const test::Environment home("HOME", "");
  EXPECT_EQ(JournalFolder(), "");
}

TEST(JournalFile, Should_StayAfterItsObjectIfItHasBytes) {
  const TempFolder folder;
  const std::string place = folder / "deep/journal";
  {
    JournalFile journal(place);
    EXPECT_FALSE(journal.Read());
    journal.Write("one");
    journal.Write("two");
    EXPECT_EQ(journal.Read(), "two");
    JournalFile empty(place);
    EXPECT_NE(empty.FileName(), journal.FileName());
    EXPECT_TRUE(JournalFile::Abandoned(place).empty()) << "both are held";
  }
  {
    std::vector<JournalFile> found = JournalFile::Abandoned(place);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].Read(), "two");
    EXPECT_TRUE(JournalFile::Abandoned(place).empty()) << "held again";
    found[0].Clear();
  }
  EXPECT_TRUE(std::filesystem::is_empty(place));
}

TEST(JournalFile, Should_BeFreeWhenItsProcessIsKilled) {
  const TempFolder folder;
  const std::string place = folder / "journal";
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const pid_t child = fork();
  if (child == 0) {
    JournalFile journal(place);
    journal.Write("note");
    if (write(ends[1], "y", 1) != 1) _exit(1);
    for (;;) pause();
  }
  char done = 'n';
  ASSERT_EQ(read(ends[0], &done, 1), 1);
  EXPECT_TRUE(JournalFile::Abandoned(place).empty());
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  ASSERT_EQ(JournalFile::Abandoned(place).size(), 1u);
}

TEST(JournalFile, Should_RefuseMoreBytesThanAJournalHolds) {
  const TempFolder folder;
  JournalFile journal(folder / "journal");
  journal.Write(std::string(kMostJournalBytes, 'x'));
  EXPECT_THROW(journal.Write(std::string(kMostJournalBytes + 1, 'y')), FileError);
  EXPECT_EQ(journal.Read(), std::string(kMostJournalBytes, 'x'));
  std::ofstream(journal.FileName(), std::ios::app) << "z";
  EXPECT_FALSE(journal.Read());
}

TEST(JournalFile, Should_GiveTheNewestFirstAndRemoveThoseBeyondAHundred) {
  const TempFolder folder;
  for (int i = 0; i < 105; ++i) JournalFile(folder.Path()).Write(std::to_string(i));
  const std::vector<JournalFile> found = JournalFile::Abandoned(folder.Path());
  ASSERT_EQ(found.size(), 100u);
  EXPECT_EQ(found.front().Read(), "104");
  EXPECT_EQ(found.back().Read(), "5");
  EXPECT_EQ(folder.Names().size(), 200u);
}

TEST(JournalFile, Should_LeaveOutWhatIsNoJournal) {
  const TempFolder folder;
  folder.Write("note.json", "without a lock");
  folder.Write("readme", "text");
  std::filesystem::create_directory(folder / "folder.lock");
  std::filesystem::create_symlink("note.json", folder / "link.lock");
  folder.Write("alone.lock", "");
  EXPECT_TRUE(JournalFile::Abandoned(folder.Path()).empty());
  EXPECT_TRUE(std::filesystem::exists(folder / "note.json"));
  EXPECT_FALSE(std::filesystem::exists(folder / "alone.lock"));
  EXPECT_TRUE(JournalFile::Abandoned(folder / "missing").empty());
}

TEST(JournalFile, Should_ThrowWithoutAFolder) {
  const TempFolder folder;
  EXPECT_THROW(JournalFile(""), FileError);
  folder.Write("file", "");
  EXPECT_THROW(JournalFile(folder / "file"), FileError);
  EXPECT_THROW(JournalFile(folder / "file/journal"), FileError);
}

}  // namespace
}  // namespace rasterkit
