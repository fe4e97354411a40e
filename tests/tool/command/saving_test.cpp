// How outputs get their names and reach the disk.

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::vector<ToolSetup::FailingCall> kNoSync = {
    {SYS_fdatasync, EIO, 0}, {SYS_fsync, EIO, 0}, {SYS_syncfs, EIO, 0}};
constexpr uint32_t kNameless = O_TMPFILE & ~O_DIRECTORY;

class CliSaving : public testing::Test {
 protected:
  CliSaving() { SaveBmpFile(in_, picture_); }

  static ToolSetup Failing(std::vector<ToolSetup::FailingCall> calls) {
    ToolSetup setup;
    setup.failingCalls = std::move(calls);
    return setup;
  }

  TempFolder folder_;
  Raster picture_ = GradientRaster(pf24bit, 400, 300);
  std::string in_ = folder_ / "in.bmp";
};

/// All verbs write through the same function; these are its callers.
TEST_F(CliSaving, OutputThatAppearsMeanwhile_Should_Exit4AndStay) {
  SaveJpegFile(folder_ / "in.jpg", picture_);
  const std::vector<std::vector<std::string>> lines = {
      {"convert", in_, folder_ / "out.png"},
      {"gray", in_, folder_ / "out.tif"},
      {"icon", in_, folder_ / "out.ico", "--size", "32x"},
      {"geotiff", in_, folder_ / "out.tif", "--origin", "10,20", "--pixel-size", "0.5"},
      {"exif", "--strip-thumbnail", folder_ / "in.jpg", folder_ / "out.jpg"}};
  for (const auto& line : lines) {
    SCOPED_TRACE(line[0]);
    const bool isExif = line[0] == "exif";
    const std::string in = line[isExif ? 2 : 1], out = line[isExif ? 3 : 2];
    // The input is a pipe: the tool has looked for its output before it reads.
    const std::string pipe =
        folder_ / ("pipe-" + line[0] + std::filesystem::path(in).extension().string());
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::vector<std::string> words = line;
    std::replace(words.begin(), words.end(), in, pipe);
    ToolProcess tool(words);
    {
      std::ofstream writer(pipe, std::ios::binary);
      WriteText(out, "theirs");
      const std::vector<uint8_t> bytes = ReadBytes(in);
      writer.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }
    const ToolResult result = tool.Wait();
    EXPECT_EQ(result.code, 4) << result.err;
    EXPECT_THAT(result.err, HasSubstr(out + ": already exists (--overwrite replaces it)"));
    EXPECT_EQ(ReadBytes(out).size(), 6u);
    std::filesystem::remove(out);
  }
}

TEST_F(CliSaving, FailedSync_Should_Exit4AndNameTheFile) {
  if (!CanFilterCalls()) GTEST_SKIP() << "no filters of system calls";
  const ToolResult result =
      RunTool({"convert", "--json", in_, folder_ / "out.png"}, Failing(kNoSync));
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr(folder_ / "out.png"));
  EXPECT_EQ(JsonLines(result.out).at(0)["ok"], false);
  EXPECT_THAT(folder_.Names(), ElementsAre("in.bmp"));
}

TEST_F(CliSaving, NoSync_Should_SyncNothing) {
  if (!CanFilterCalls()) GTEST_SKIP() << "no filters of system calls";
  // A new file, and then one that is replaced.
  for (int i = 0; i < 2; ++i) {
    const ToolResult result = RunTool(
        {"convert", "--no-sync", "--overwrite", in_, folder_ / "new.png"}, Failing(kNoSync));
    EXPECT_EQ(result.code, 0) << result.err;
  }
  EXPECT_TRUE(SamePixels(picture_, LoadFile(folder_ / "new.png")));
}

TEST_F(CliSaving, FailedSyncOfABatch_Should_FailEachOutputInOrder) {
  if (!CanFilterCalls()) GTEST_SKIP() << "no filters of system calls";
  std::vector<std::string> line = {"convert", "--json", "--continue", "--jobs",       "3",
                                   "--type",  "png",    "--out-dir",  folder_ / "out"};
  std::vector<std::string> inputs;
  for (int i = 0; i < 30; ++i) {
    inputs.push_back(folder_ / ("in" + std::to_string(i) + ".bmp"));
    std::filesystem::copy_file(in_, inputs.back());
  }
  line.insert(line.end(), inputs.begin(), inputs.end());
  const ToolResult failed = RunTool(line, Failing(kNoSync));
  EXPECT_EQ(failed.code, 4);
  const auto lines = JsonLines(failed.out);
  ASSERT_EQ(lines.size(), inputs.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i]["file"], inputs[i]);
    EXPECT_EQ(lines[i]["ok"], false);
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "out"));

  const ToolResult done = RunTool(line);
  EXPECT_EQ(done.code, 0) << done.err;
  const auto all = JsonLines(done.out);
  ASSERT_EQ(all.size(), inputs.size());
  for (size_t i = 0; i < all.size(); ++i) {
    EXPECT_EQ(all[i]["file"], inputs[i]);
    EXPECT_EQ(all[i]["ok"], true);
    EXPECT_TRUE(SamePixels(picture_, LoadFile(all[i]["output"])));
  }
}

TEST_F(CliSaving, EveryFormat_Should_GoIntoAPipe) {
  for (const std::string extension : {"bmp", "png", "jpg", "tif", "ico"}) {
    SCOPED_TRACE(extension);
    const std::string pipe = folder_ / ("pipe." + extension),
                      file = folder_ / ("file." + extension);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string verb = extension == "ico" ? "icon" : "convert";
    const std::vector<std::string> more =
        extension == "ico" ? std::vector<std::string>{"--size", "64x"} : std::vector<std::string>{};
    std::vector<std::string> line = {verb, in_, pipe};
    line.insert(line.end(), more.begin(), more.end());
    ToolProcess tool(line);
    std::ifstream in(pipe, std::ios::binary);
    const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    const ToolResult result = tool.Wait();
    EXPECT_EQ(result.code, 0) << result.err;
    line[2] = file;
    ASSERT_EQ(RunTool(line).code, 0);
    EXPECT_EQ(bytes, ReadBytes(file));
  }
}

TEST_F(CliSaving, LinkToStdout_Should_WriteThere) {
  for (const std::string extension : {"png", "tif"}) {
    const std::string link = folder_ / ("link." + extension),
                      file = folder_ / ("file." + extension);
    // Where /dev/stdout leads.
    std::filesystem::create_symlink("/proc/self/fd/1", link);
    const ToolResult result = RunTool({"convert", in_, link});
    EXPECT_EQ(result.code, 0) << result.err;
    ASSERT_EQ(RunTool({"convert", in_, file}).code, 0);
    const std::vector<uint8_t> bytes = ReadBytes(file);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), result.out.begin(), result.out.end(),
                           [](uint8_t a, char b) { return a == static_cast<uint8_t>(b); }));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    std::filesystem::create_symlink("/dev/null", folder_ / ("null." + extension));
    EXPECT_EQ(RunTool({"convert", in_, folder_ / ("null." + extension)}).code, 0);
  }
}

TEST_F(CliSaving, SeveralNamesOfTheOldFile_Should_BeAWarning) {
  WriteText(folder_ / "out.png", "old");
  std::filesystem::create_hard_link(folder_ / "out.png", folder_ / "other.png");
  const ToolResult result = RunTool({"convert", "--overwrite", "--json", in_, folder_ / "out.png"});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err,
              HasSubstr("warning: " + folder_ / "out.png" + ": the old file had 2 names"));
  EXPECT_THAT(JsonLines(result.out).at(0)["warnings"].dump(), HasSubstr("2 names"));
  EXPECT_EQ(ReadBytes(folder_ / "other.png").size(), 3u);
}

TEST_F(CliSaving, InterruptionAfterTheLastOutput_Should_Exit0AndBeSaid) {
  // The line about the output does not fit into stdout, a pipe that is full.
  const std::string pipe = folder_ / "stdout";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int reader = open(pipe.c_str(), O_RDWR | O_NONBLOCK);
  ASSERT_GE(reader, 0);
  const std::vector<char> filling(4096);
  size_t filled = 0;
  for (ssize_t count = 0; (count = write(reader, filling.data(), filling.size())) > 0;) {
    filled += static_cast<size_t>(count);
  }
  ToolSetup setup;
  setup.stdoutFile = pipe;
  ToolProcess tool({"convert", "--json", in_, folder_ / "out.png"}, setup);
  while (!std::filesystem::exists(folder_ / "out.png")) std::this_thread::yield();
  tool.Interrupt();
  std::vector<char> taken(filled);
  for (size_t rest = filled; rest > 0;) {
    const ssize_t count = read(reader, taken.data(), rest);
    if (count > 0) rest -= static_cast<size_t>(count);
  }
  const ToolResult result = tool.Wait();
  close(reader);
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.err, HasSubstr("interrupted"));
  EXPECT_TRUE(SamePixels(picture_, LoadFile(folder_ / "out.png")));
}

/// As on a file system without nameless files.
TEST_F(CliSaving, RepeatedInterruption_Should_LeaveNoTemporaryFile) {
  if (!CanFilterCalls()) GTEST_SKIP() << "no filters of system calls";
  std::mt19937 random(3);
  SaveBmpFile(in_, RandomRaster(pf24bit, 3000, 2000, random));
  const std::string out = folder_ / "out.png";
  ToolProcess tool({"convert", in_, out}, Failing({{SYS_openat, EOPNOTSUPP, kNameless}}));
  while (folder_.Names().size() == 1) std::this_thread::yield();
  // The first one tells the tool to stop, the next one ends it.
  for (int i = 0; i < 1000; ++i) tool.Interrupt();
  const ToolResult result = tool.Wait();
  EXPECT_EQ(result.code, 130);
  EXPECT_EQ(result.err, "rasterkit: interrupted\n");
  EXPECT_THAT(folder_.Names(), ElementsAre("in.bmp"));
}

}  // namespace
}  // namespace rasterkit::test
