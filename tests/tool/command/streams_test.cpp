// "-": stdin as the input, stdout as the output.

#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CliStreams : public testing::Test {
 protected:
  CliStreams() { SaveBmpFile(in_, picture_); }

  /// Runs the tool with a file on stdin; `into` gets what it writes to stdout, else the result.
  ToolResult Run(const std::vector<std::string>& line, const std::string& from = {},
                 const std::string& into = {}) {
    ToolSetup setup;
    setup.stdinFile = from;
    setup.stdoutFile = into;
    if (!into.empty()) WriteText(into, "");
    return RunTool(line, setup);
  }
  static Raster Load(const std::string& file) {
    TFileStream stream(file);
    return PictureOfFrame(DecodeFrame(stream));
  }
  static PictureType TypeOf(const std::string& file) {
    TFileStream stream(file);
    return SniffPictureType(stream);
  }

  TempFolder folder_;
  Raster picture_ = GradientRaster(pf24bit, 60, 40);
  std::string in_ = folder_ / "in.bmp", out_ = folder_ / "out";
};

TEST_F(CliStreams, Picture_Should_GoFromStdinToStdout) {
  const std::pair<const char*, PictureType> types[] = {{"png", PictureType::png},
                                                       {"bmp", PictureType::bmp},
                                                       {"tif", PictureType::tiff},
                                                       {".tiff", PictureType::tiff}};
  for (const auto& [format, type] : types) {
    const ToolResult result = Run({"convert", "-", "-", "--format", format}, in_, out_);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(TypeOf(out_), type) << format;
    EXPECT_TRUE(SamePixels(Load(out_), picture_)) << format;
  }
  EXPECT_EQ(Run({"convert", "-", "-", "--format", "jpg", "-q"}, in_, out_).code, 0);
  EXPECT_EQ(TypeOf(out_), PictureType::jpeg);
}

/// A pipe gives its bytes only once and takes them in order.
TEST_F(CliStreams, Picture_Should_GoThroughPipes) {
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  const std::vector<uint8_t> bytes = ReadBytes(in_);
  std::thread writer([&] {
    const int pipe = open((folder_ / "pipe").c_str(), O_WRONLY);
    for (size_t at = 0; at < bytes.size();) {
      const ssize_t count = write(pipe, bytes.data() + at, std::min<size_t>(bytes.size() - at, 99));
      if (count <= 0) break;
      at += static_cast<size_t>(count);
    }
    close(pipe);
  });
  // stdout of RunTool is a pipe.
  const ToolResult result = Run({"convert", "-", "-", "--format", "tif"}, folder_ / "pipe");
  writer.join();
  EXPECT_EQ(result.code, 0) << result.err;
  WriteText(out_, result.out);
  EXPECT_TRUE(SamePixels(Load(out_), picture_));
}

/// A pipe gives what it holds at the time, which is not all that comes.
TEST_F(CliStreams, LargePicture_Should_GoThroughAPipeWhole) {
  const Raster large = GradientRaster(pf24bit, 1500, 1000);
  SaveBmpFile(in_, large);
  ASSERT_EQ(Run({"convert", in_, folder_ / "in.tif", "--compression", "none"}).code, 0);
  int number = 0;
  for (const std::string& file : {in_, folder_ / "in.tif"}) {
    const std::string fifo = folder_ / ("pipe" + std::to_string(number++));
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const std::vector<uint8_t> bytes = ReadBytes(file);
    ASSERT_GT(bytes.size(), 4'000'000u);
    std::thread writer([&] {
      const int pipe = open(fifo.c_str(), O_WRONLY);
      for (size_t at = 0; at < bytes.size();) {
        const size_t most = std::min<size_t>(bytes.size() - at, 70'001);
        const ssize_t count = write(pipe, bytes.data() + at, most);
        if (count <= 0) break;
        at += static_cast<size_t>(count);
      }
      close(pipe);
    });
    const ToolResult result = Run({"convert", "-", folder_ / "o.png", "--overwrite"}, fifo);
    writer.join();
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(SamePixels(LoadFile(folder_ / "o.png"), large)) << file;
  }
}

TEST_F(CliStreams, Type_Should_BeThatOfTheInput_When_FormatIsNotGiven) {
  EXPECT_EQ(Run({"gray", in_, "-"}, {}, out_).code, 0);
  EXPECT_EQ(TypeOf(out_), PictureType::bmp);
}

TEST_F(CliStreams, Stdin_Should_BecomeAFile) {
  EXPECT_EQ(Run({"convert", "-", folder_ / "a.png"}, in_).code, 0);
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "a.png"), picture_));
  EXPECT_EQ(Run({"convert", "-", "--out-dir", folder_ / "b", "--format", "png"}, in_).code, 0);
  EXPECT_TRUE(SamePixels(LoadFile(folder_ / "b/stdin.png"), picture_));
}

TEST_F(CliStreams, Isolation_Should_TakeStdin) {
  EXPECT_EQ(Run({"convert", "-", "-", "--format", "png", "--isolate"}, in_, out_).code, 0);
  EXPECT_TRUE(SamePixels(LoadFile(out_), picture_));
  const ToolResult info = Run({"info", "-", "--isolate", "--verify"}, in_);
  EXPECT_EQ(info.code, 0) << info.err;
  EXPECT_THAT(info.out, HasSubstr("-: bmp, 60 x 40 pixels"));
}

TEST_F(CliStreams, Questions_Should_TakeStdin) {
  const ToolResult info = Run({"info", "-", "--json", "--verify"}, in_);
  EXPECT_EQ(info.code, 0) << info.err;
  EXPECT_EQ(JsonLines(info.out).at(0)["file"], "-");
  EXPECT_EQ(JsonLines(info.out).at(0)["width"], 60);
  EXPECT_EQ(JsonLines(info.out).at(0)["verified"], true);
  EXPECT_EQ(Run({"compare", "-", in_}, in_).code, 0);
  EXPECT_EQ(Run({"exif", "-"}, RASTERKIT_SAMPLES "/orientation-6.jpg").code, 0);
  EXPECT_EQ(Run({"geotiff", "-"}, RASTERKIT_SAMPLES "/terrain.tif").code, 0);
}

/// What follows on stdout stands behind the picture.
TEST_F(CliStreams, Stdout_Should_KeepItsPlace) {
  const int file = open(out_.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
  ASSERT_EQ(write(file, "start", 5), 5);
  close(file);
  const std::string line = std::string("{ printf start; '") + RASTERKIT_TOOL + "' convert '" + in_ +
                           "' -; printf end; } > '" + out_ + "'";
  ASSERT_EQ(std::system(line.c_str()), 0);
  const std::vector<uint8_t> bytes = ReadBytes(out_);
  const std::string text(bytes.begin(), bytes.end());
  EXPECT_TRUE(text.starts_with("startBM"));
  EXPECT_TRUE(text.ends_with("end"));
  EXPECT_EQ(text.size(), 8 + ReadBytes(in_).size());
}

/// Reports go to stderr; a stream has no files beside it.
TEST_F(CliStreams, Position_Should_BeALoss_When_TheTypeHoldsNone) {
  SavePngFile(folder_ / "map.png", picture_);
  WriteText(folder_ / "map.pgw", "2\n0\n0\n-2\n1001\n1999\n");
  const ToolResult png = Run({"convert", folder_ / "map.png", "-", "--strict"}, {}, out_);
  EXPECT_EQ(png.code, 5);
  EXPECT_THAT(png.err, HasSubstr("map position"));
  EXPECT_EQ(TypeOf(out_), PictureType::png);
  const ToolResult tiff =
      Run({"convert", folder_ / "map.png", "-", "--strict", "--format", "tif"}, {}, out_);
  EXPECT_EQ(tiff.code, 0) << tiff.err;
  std::filesystem::rename(out_, folder_ / "copy.tif");
  const auto facts = JsonLines(RunTool({"info", "--json", folder_ / "copy.tif"}).out).at(0);
  EXPECT_EQ(facts["geo"][0]["affine"], nlohmann::json({2.0, 0.0, 0.0, -2.0, 1001.0, 1999.0}));
  EXPECT_THAT(folder_.Names(), ElementsAre("copy.tif", "in.bmp", "map.pgw", "map.png"));
  EXPECT_EQ(Run({"convert", in_, "-", "--world-file"}, {}, out_).code, 2);
}

TEST_F(CliStreams, DryRun_Should_SayWhatBecomesOfAStream) {
  SavePngFile(folder_ / "map.png", picture_);
  WriteText(folder_ / "map.pgw", "2\n0\n0\n-2\n1001\n1999\n");
  const std::string map = folder_ / "map.png";
  const ToolResult png = Run({"convert", map, "-", "--strict", "--dry-run"});
  EXPECT_EQ(png.code, 5);
  EXPECT_THAT(png.err, HasSubstr("lost: map position"));
  EXPECT_THAT(png.out, testing::Not(HasSubstr("writes")));
  EXPECT_THAT(png.out, testing::Not(HasSubstr("kept: position")));
  EXPECT_EQ(Run({"convert", map, "-", "--strict", "--dry-run", "--format", "tif"}).code, 0);
  EXPECT_EQ(Run({"convert", map, "-", "--dry-run", "--world-file"}).code, 2);
  EXPECT_THAT(folder_.Names(), ElementsAre("in.bmp", "map.pgw", "map.png"));
}

TEST_F(CliStreams, GeoTiff_Should_BeATiffFile) {
  EXPECT_EQ(Run({"geotiff", "-", "-", "--origin", "100,200", "--pixel-size", "2"}, in_, out_).code,
            0);
  EXPECT_EQ(TypeOf(out_), PictureType::tiff);
}

TEST_F(CliStreams, ReaderThatIsGone_Should_Exit4WithOneMessage) {
  ToolSetup setup;
  setup.isReaderGone = true;
  const ToolResult result = RunTool({"convert", in_, "-", "--format", "png"}, setup);
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(result.err, "rasterkit: -: cannot be written to stdout: Broken pipe\n");
}

TEST_F(CliStreams, FullDisk_Should_Exit4) {
  ToolSetup setup;
  setup.stdoutFile = "/dev/full";
  const ToolResult result = RunTool({"convert", in_, "-"}, setup);
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("No space left on device"));
}

TEST_F(CliStreams, Terminal_Should_GetNoPicture) {
  const int ours = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_GE(ours, 0);
  ASSERT_EQ(grantpt(ours), 0);
  ASSERT_EQ(unlockpt(ours), 0);
  ToolSetup setup;
  setup.stdoutFile = ptsname(ours);
  const ToolResult result = RunTool({"convert", in_, "-"}, setup);
  close(ours);
  EXPECT_EQ(result.code, 2);
  EXPECT_THAT(result.err, HasSubstr("not written to a terminal"));
}

TEST_F(CliStreams, WrongUse_Should_Exit2AndWriteNothing) {
  const std::pair<std::vector<std::string>, const char*> wrong[] = {
      {{"convert", in_, "-", "--json"}, "--json"},
      {{"convert", in_, "-", "--format", "gif"}, "must be bmp, jpg, png or tif, not 'gif'"},
      {{"convert", in_, "-", "--format", "emf"}, "not 'emf'"},
      {{"convert", "-", "--in-place"}, "in place"},
      {{"convert", "-", "-", "--out-dir", folder_ / "d", "--format", "png"}, "only once"},
      {{"icon", in_, "-"}, "does not take stdin and stdout"},
      {{"icon", "-", folder_ / "a.ico"}, "does not take stdin and stdout"},
      {{"pdf", "-", folder_ / "a.png"}, "does not take stdin and stdout"}};
  for (const auto& [line, message] : wrong) {
    const ToolResult result = Run(line, in_);
    EXPECT_EQ(result.code, 2) << message;
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_THAT(result.out, IsEmpty());
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("in.bmp"));
}

TEST_F(CliStreams, InputThatCannotBeRead_Should_Exit3) {
  for (const char* verb : {"convert", "gray"}) {
    const ToolResult empty = Run({verb, "-", folder_ / "a.png"});
    EXPECT_EQ(empty.code, 3);
    EXPECT_EQ(empty.err, "rasterkit: -: the file is empty\n");
  }
  WriteText(folder_ / "text", "no picture");
  EXPECT_EQ(Run({"convert", "-", folder_ / "a.png"}, folder_ / "text").code, 3);
  EXPECT_EQ(Run({"info", "-"}, folder_ / "text").code, 3);
  // The damage shows only in the pixels.
  std::vector<uint8_t> half = ReadBytes(RASTERKIT_SAMPLES "/upright.png");
  half.resize(half.size() / 2);
  WriteBytes(folder_ / "half", half);
  const ToolResult damaged = Run({"gray", "-", folder_ / "a.png", "--strict"}, folder_ / "half");
  EXPECT_THAT(damaged.code, testing::AnyOf(3, 5)) << damaged.err;
  const ToolResult large = Run({"convert", "-", folder_ / "b.png", "--max-memory", "4K"}, in_);
  EXPECT_EQ(large.code, 3);
  EXPECT_THAT(large.err, HasSubstr("--max-memory"));
}

TEST_F(CliStreams, NamesThatBeginWithAHyphen_Should_BeFiles) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.Path());
  std::filesystem::copy_file(in_, "-a.bmp");
  std::filesystem::copy_file(in_, "-");
  EXPECT_EQ(Run({"convert", "--", "-a.bmp", "-b.png"}).code, 0);
  EXPECT_EQ(Run({"convert", "./-", "c.png"}).code, 0);
  std::filesystem::current_path(before);
  EXPECT_THAT(folder_.Names(), ElementsAre("-", "-a.bmp", "-b.png", "c.png", "in.bmp"));
}

}  // namespace
}  // namespace rasterkit::test
