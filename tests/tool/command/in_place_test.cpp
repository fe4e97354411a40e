// --in-place: each input is replaced, and stays under a backup name.

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

constexpr const char* kNumbers = "2\n0\n0\n-2\n1001\n1999\n";

class CliInPlace : public testing::Test {
 protected:
  CliInPlace() { SavePngFile(file_, picture_); }

  ToolResult Crop(std::vector<std::string> more = {}, const ToolSetup& setup = {}) {
    std::vector<std::string> line = {"crop", "--in-place", file_, "--rect", "3,2,10,10"};
    line.insert(line.end(), more.begin(), more.end());
    return RunTool(line, setup);
  }
  std::string Text(const std::string& name) {
    const std::vector<uint8_t> bytes = ReadBytes(folder_ / name);
    return {bytes.begin(), bytes.end()};
  }

  TempFolder folder_;
  Raster picture_ = GradientRaster(pf24bit, 40, 30);
  std::string file_ = folder_ / "a.png";
};

TEST_F(CliInPlace, OldFile_Should_StayAsBackup) {
  const std::string old = Text("a.png");
  const ToolResult first = Crop();
  EXPECT_EQ(first.code, 0);
  EXPECT_EQ(first.err, "rasterkit: " + file_ + ": backup: " + file_ + "~\n");
  EXPECT_EQ(Text("a.png~"), old);
  EXPECT_EQ(LoadFile(file_).Width(), 10);
  const std::string second = Text("a.png");
  const ToolResult again = RunTool({"gray", "--in-place", file_, "--json", "-q"});
  EXPECT_EQ(again.err, "");
  EXPECT_EQ(JsonLines(again.out).at(0)["backups"], json({file_ + "~2"}));
  EXPECT_EQ(Text("a.png~"), old) << "an existing backup is never replaced";
  EXPECT_EQ(Text("a.png~2"), second);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png", "a.png~", "a.png~2"));
}

TEST_F(CliInPlace, WorldFile_Should_BeBackedUpUnderTheSameNumber) {
  WriteText(folder_ / "a.pgw", kNumbers);
  WriteText(folder_ / "a.png~", "of somebody else");
  const ToolResult result = Crop({"--json"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_EQ(JsonLines(result.out).at(0)["backups"], json({file_ + "~2", folder_ / "a.pgw~2"}));
  EXPECT_EQ(Text("a.png~"), "of somebody else");
  EXPECT_EQ(Text("a.pgw~2"), kNumbers);
  EXPECT_EQ(Text("a.pgw"), "2\n0\n0\n-2\n1007\n1995\n");
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "a.png~2"), picture_));
  EXPECT_THAT(folder_.Names(), ElementsAre("a.pgw", "a.pgw~2", "a.png", "a.png~", "a.png~2"));
}

/// Else the backup of the second picture would stand beside the position of the first one.
TEST_F(CliInPlace, NumberOfAnOlderPosition_Should_BePassedOver) {
  for (const std::string name : {"a.pgw~", "a.PGw~", "a.wld~", "a.png.aux.xml~"}) {
    WriteText(folder_ / name, kNumbers);
    const ToolResult result = Crop({"--json"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(JsonLines(result.out).at(0)["backups"], json({file_ + "~2"})) << name;
    EXPECT_THAT(folder_.Names(), UnorderedElementsAre("a.png", "a.png~2", name));
    std::filesystem::remove(folder_ / name);
    std::filesystem::remove(folder_ / "a.png~2");
    SavePngFile(file_, picture_);
  }
}

TEST_F(CliInPlace, UnchangedWorldFile_Should_Stay) {
  WriteText(folder_ / "a.pgw", kNumbers);
  EXPECT_EQ(RunTool({"gray", "--in-place", file_}).code, 0);
  EXPECT_EQ(Text("a.pgw"), kNumbers);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.pgw", "a.png", "a.png~"));
}

TEST_F(CliInPlace, NoBackup_Should_KeepNone) {
  WriteText(folder_ / "a.pgw", kNumbers);
  const ToolResult result = Crop({"--no-backup"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.pgw", "a.png"));
  EXPECT_EQ(RunTool({"gray", file_, folder_ / "b.png", "--no-backup"}).code, 2);
}

TEST_F(CliInPlace, Overwrite_Should_KeepNoBackup) {
  EXPECT_EQ(RunTool({"gray", file_, file_, "--overwrite"}).code, 0);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

TEST_F(CliInPlace, DryRun_Should_NameTheBackups) {
  WriteText(folder_ / "a.pgw", kNumbers);
  WriteText(folder_ / "a.pgw~", "");
  const ToolResult result = Crop({"--dry-run", "--json"});
  EXPECT_EQ(JsonLines(result.out).at(0)["backups"], json({file_ + "~2", folder_ / "a.pgw~2"}));
  EXPECT_THAT(Crop({"--dry-run"}).out, HasSubstr("backup: " + file_ + "~2\n"));
  EXPECT_THAT(folder_.Names(), ElementsAre("a.pgw", "a.pgw~", "a.png"));
}

TEST_F(CliInPlace, Link_Should_StayWithTheBackupBesideTheRealFile) {
  std::filesystem::create_directory(folder_ / "real");
  std::filesystem::rename(file_, folder_ / "real/b.png");
  std::filesystem::create_symlink("real/b.png", file_);
  const ToolResult result = Crop({"--json"});
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_TRUE(std::filesystem::is_symlink(file_));
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "real/b.png~"), picture_));
  EXPECT_EQ(JsonLines(result.out).at(0)["backups"], json({folder_ / "real/b.png~"}));
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png", "real"));
}

TEST_F(CliInPlace, SeveralInputs_Should_HaveTheirBackups) {
  SavePngFile(folder_ / "b.png", picture_);
  EXPECT_EQ(RunTool({"gray", "--in-place", file_, folder_ / "b.png", "--jobs", "2"}).code, 0);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png", "a.png~", "b.png", "b.png~"));
}

TEST_F(CliInPlace, BackupThatCannotBeMade_Should_KeepTheOldFileAndExit4) {
  if (!CanFilterCalls()) GTEST_SKIP() << "system calls cannot be filtered";
  ToolSetup setup;
  setup.failingCalls = {{SYS_linkat, EIO, 0}};
  const ToolResult result = Crop({}, setup);
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("no backup of the old file can be made"));
  EXPECT_THAT(result.err, HasSubstr("--no-backup"));
  EXPECT_TRUE(SamePixels(LoadFile(file_), picture_));
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

TEST_F(CliInPlace, Backup_Should_BeACopy_When_LinksCannotBeMade) {
  if (!CanFilterCalls()) GTEST_SKIP() << "system calls cannot be filtered";
  ToolSetup setup;
  constexpr uint32_t kNameless = 020000000;
  setup.failingCalls = {{SYS_linkat, EPERM, 0}, {SYS_openat, EOPNOTSUPP, kNameless}};
  const ToolResult result = Crop({}, setup);
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "a.png~"), picture_));
  EXPECT_EQ(LoadFile(file_).Width(), 10);
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png", "a.png~"));
}

}  // namespace
}  // namespace rasterkit::test
