#include <filesystem>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class CliOutputs : public testing::Test {
 protected:
  CliOutputs() { SaveBmpFile(in_, picture_); }

  ToolResult Convert(const std::string& in, const std::string& out, const ToolSetup& setup = {}) {
    return RunTool({"convert", in, out, "--overwrite"}, setup);
  }

  TempFolder folder_;
  Raster picture_ = GradientRaster(pf24bit, 60, 40);
  std::string in_ = folder_ / "in.bmp";
};

TEST_F(CliOutputs, ExistingOutput_Should_StayAndExit4_When_OverwriteIsNotGiven) {
  WriteText(folder_ / "out.png", "precious");
  const ToolResult result = RunTool({"convert", in_, folder_ / "out.png"});
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("--overwrite"));
  EXPECT_EQ(ReadBytes(folder_ / "out.png").size(), 8u);
}

TEST_F(CliOutputs, ExistingOutput_Should_BeReplaced_When_OverwriteIsGiven) {
  WriteText(folder_ / "out.png", "old");
  EXPECT_EQ(Convert(in_, folder_ / "out.png").code, 0);
  EXPECT_TRUE(SamePixels(picture_, LoadFile(folder_ / "out.png")));
}

TEST_F(CliOutputs, InputAsOutput_Should_BeSafe) {
  EXPECT_EQ(RunTool({"rotate", in_, in_, "--angle", "90"}).code, 4);
  EXPECT_TRUE(SamePixels(picture_, LoadFile(in_)));
  EXPECT_EQ(RunTool({"rotate", in_, in_, "--angle", "90", "--overwrite"}).code, 0);
  EXPECT_EQ(LoadFile(in_).Width(), 40);
  std::filesystem::create_symlink(in_, folder_ / "link.bmp");
  EXPECT_EQ(RunTool({"rotate", folder_ / "link.bmp", in_, "--angle", "90", "--overwrite"}).code, 0);
  EXPECT_EQ(LoadFile(in_).Width(), 60);
  EXPECT_THAT(folder_.Names(), ElementsAre("in.bmp", "link.bmp"));
}

TEST_F(CliOutputs, FullDisk_Should_LeaveTheOldFileWholeAndExit4) {
  for (const char* name : {"out.bmp", "out.png", "out.jpg"}) {
    WriteText(folder_ / name, "old");
    const ToolResult result =
        Convert(in_, folder_ / name, {.fileSizeLimit = 100, .stdoutFile = ""});
    EXPECT_EQ(result.code, 4) << name;
    EXPECT_THAT(result.err, HasSubstr(folder_ / name));
    EXPECT_EQ(ReadBytes(folder_ / name), (std::vector<uint8_t>{'o', 'l', 'd'})) << name;
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("in.bmp", "out.bmp", "out.jpg", "out.png"))
      << "nothing half written";
}

TEST_F(CliOutputs, FullDisk_Should_LeaveNoNewFile) {
  EXPECT_EQ(Convert(in_, folder_ / "new.png", {.fileSizeLimit = 100, .stdoutFile = ""}).code, 4);
  EXPECT_THAT(folder_.Names(), ElementsAre("in.bmp"));
}

TEST_F(CliOutputs, FullDevice_Should_Exit4) {
  std::filesystem::create_symlink("/dev/full", folder_ / "full.bmp");
  EXPECT_EQ(Convert(in_, folder_ / "full.bmp").code, 4);
}

TEST_F(CliOutputs, MissingFolderAndFolderAsOutput_Should_Exit4) {
  EXPECT_EQ(Convert(in_, folder_ / "missing/out.png").code, 4);
  std::filesystem::create_directory(folder_ / "folder.png");
  EXPECT_EQ(Convert(in_, folder_ / "folder.png").code, 4);
}

TEST_F(CliOutputs, ModeOfAnExistingOutput_Should_BeKept) {
  WriteText(folder_ / "out.png", "old");
  chmod((folder_ / "out.png").c_str(), 0640);
  EXPECT_EQ(Convert(in_, folder_ / "out.png").code, 0);
  struct stat status {};
  stat((folder_ / "out.png").c_str(), &status);
  EXPECT_EQ(status.st_mode & 0777u, 0640u);
}

/// The output is a pipe smaller than the picture, so the tool cannot finish before the
/// interruption.
TEST_F(CliOutputs, Interruption_Should_Exit130_When_AnOutputIsBeingWritten) {
  SaveBmpFile(in_, GradientRaster(pf24bit, 800, 600));
  ASSERT_EQ(mkfifo((folder_ / "pipe.bmp").c_str(), 0600), 0);
  ToolProcess tool({"convert", in_, folder_ / "pipe.bmp"});
  const std::vector<uint8_t> bytes = [&] {
    std::ifstream pipe(folder_ / "pipe.bmp", std::ios::binary);
    tool.Interrupt();
    return std::vector<uint8_t>{std::istreambuf_iterator<char>(pipe), {}};
  }();
  const ToolResult result = tool.Wait();
  EXPECT_EQ(result.code, 130);
  EXPECT_THAT(result.err, HasSubstr("interrupted"));
}

/// The input is a pipe that never gives its last byte.
TEST_F(CliOutputs, Interruption_Should_Exit130AndLeaveTheOldFileWhole_When_APipeIsWaitedFor) {
  const std::vector<uint8_t> bytes = ReadBytes(in_);
  WriteText(folder_ / "out.png", "old");
  ASSERT_EQ(mkfifo((folder_ / "pipe.bmp").c_str(), 0600), 0);
  ToolProcess tool({"convert", folder_ / "pipe.bmp", folder_ / "out.png", "--overwrite"});
  const int pipe = open((folder_ / "pipe.bmp").c_str(), O_WRONLY);
  ASSERT_GE(pipe, 0);
  ASSERT_EQ(write(pipe, bytes.data(), 1000), 1000);
  tool.Interrupt();
  const ToolResult result = tool.Wait();
  close(pipe);
  EXPECT_EQ(result.code, 130);
  EXPECT_THAT(result.err, HasSubstr("interrupted"));
  EXPECT_EQ(ReadBytes(folder_ / "out.png"), (std::vector<uint8_t>{'o', 'l', 'd'}));
  EXPECT_THAT(folder_.Names(), ElementsAre("in.bmp", "out.png", "pipe.bmp"));
}

TEST_F(CliOutputs, Interruption_Should_KeepWhatWasDone_When_APipeIsWaitedForInABatch) {
  ASSERT_EQ(mkfifo((folder_ / "pipe.bmp").c_str(), 0600), 0);
  ToolProcess tool({"convert", "--json", in_, folder_ / "pipe.bmp", "--type", "png", "--out-dir",
                    folder_ / "out"});
  // The jobs run in order: the first picture is finished when the pipe is opened.
  const int pipe = open((folder_ / "pipe.bmp").c_str(), O_WRONLY);
  tool.Interrupt();
  const ToolResult result = tool.Wait();
  close(pipe);
  EXPECT_EQ(result.code, 130);
  EXPECT_EQ(JsonLines(result.out).size(), 1u);
  EXPECT_TRUE(SamePixels(picture_, LoadFile(folder_ / "out/in.png")));
}

TEST_F(CliOutputs, PipeAsInput_Should_BeReadToItsEnd) {
  const std::vector<uint8_t> bytes = ReadBytes(in_);
  ASSERT_EQ(mkfifo((folder_ / "pipe.bmp").c_str(), 0600), 0);
  ToolProcess tool({"convert", folder_ / "pipe.bmp", folder_ / "out.png"});
  const int pipe = open((folder_ / "pipe.bmp").c_str(), O_WRONLY);
  ASSERT_EQ(write(pipe, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  close(pipe);
  const ToolResult result = tool.Wait();
  EXPECT_EQ(result.code, 0) << result.err;
  EXPECT_TRUE(SamePixels(picture_, LoadFile(folder_ / "out.png")));
}

}  // namespace
}  // namespace rasterkit::test
