// Unusual but harmless things that users, shells and systems do.

#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/gif_file.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/support/webp_file.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;

class CliHostileUse : public testing::Test {
 protected:
  CliHostileUse() { SaveBmpFile(in_, picture_); }

  TempFolder folder_;
  Raster picture_ = GradientRaster(pf24bit, 400, 300);
  std::string in_ = folder_ / "in.bmp";
};

/// Runs the tool in a shell with a redirection after its arguments; returns its exit code.
int RunByShell(const std::string& arguments, const std::string& redirection) {
  const int status = std::system(("'" RASTERKIT_TOOL "' " + arguments + " " + redirection).c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}

TEST_F(CliHostileUse, ClosedStdout_Should_Exit4AndKeepTheTextOutOfThePictures) {
  std::string inputs;
  for (int i = 0; i < 8; i++) {
    const std::string copy = folder_ / ("in" + std::to_string(i) + ".bmp");
    std::filesystem::copy_file(in_, copy);
    inputs += "'" + copy + "' ";
  }
  for (const char* closed : {">&-", "<&- >&-", "<&- >&- 2>&-"}) {
    SCOPED_TRACE(closed);
    const std::string arguments = "convert --json --overwrite --jobs 4 --type bmp --out-dir '" +
                                  folder_ / "out" + "' " + inputs;
    EXPECT_EQ(RunByShell(arguments, std::string("2>'") + folder_ / "err" + "' " + closed), 4);
    for (int i = 0; i < 8; i++) {
      EXPECT_EQ(ReadBytes(folder_ / ("out/in" + std::to_string(i) + ".bmp")), ReadBytes(in_)) << i;
    }
  }
  EXPECT_EQ(RunByShell("info '" + in_ + "'", ">&- 2>/dev/null"), 4);
  EXPECT_EQ(RunByShell("convert '" + in_ + "' '" + folder_ / "quiet.png" + "'", ">&-"), 0)
      << "nothing had to be said";
}

TEST_F(CliHostileUse, GoneReader_Should_Exit4AndFinishTheOutputs) {
  ToolResult result =
      RunTool({"info", in_}, {.fileSizeLimit = {}, .stdoutFile = "", .isReaderGone = true});
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr("stdout"));
  result = RunTool({"convert", "--json", in_, folder_ / "out.png"},
                   {.fileSizeLimit = {}, .stdoutFile = "", .isReaderGone = true});
  EXPECT_EQ(result.code, 4);
  EXPECT_TRUE(SamePixels(picture_, LoadFile(folder_ / "out.png")));
}

TEST_F(CliHostileUse, PipeAsOutputWhoseReaderLeaves_Should_Exit4AndNameIt) {
  const std::string pipe = folder_ / "pipe.bmp";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  ToolProcess tool({"convert", in_, pipe});
  // The picture does not fit into the pipe, so the writer waits until the reader leaves.
  const int reader = open(pipe.c_str(), O_RDONLY);
  ASSERT_GE(reader, 0);
  close(reader);
  const ToolResult result = tool.Wait();
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr(pipe));
  EXPECT_THAT(result.err, HasSubstr("Broken pipe"));
}

TEST_F(CliHostileUse, NamesInTexts_Should_HaveNoControlCharacters) {
  const std::string name = "red\x1b[31m\n\r\t\x7f \xC2\x9B\xE2\x80\xAE\xFF \xC3\xA4\"'\\.png";
  const std::string shown = "red\\x1b[31m\\n\\r\\t\\x7f \\u009b\\u202e\\xff \xC3\xA4\"'\\.png";
  const std::string there = folder_ / name;
  ASSERT_EQ(RunTool({"convert", in_, there}).code, 0);
  const std::string absent = folder_ / ("no " + name);
  const std::vector<std::vector<std::string>> runs = {{"info", there},
                                                      {"palette", there},
                                                      {"info", absent},
                                                      {"convert", in_, there},
                                                      {"convert", absent, in_},
                                                      {"exif", there},
                                                      {"geotiff", there},
                                                      {"pdf", absent},
                                                      {"compare", there, absent},
                                                      {"rotate", "--angle", "x", there},
                                                      {"mirror", there}};
  for (const auto& arguments : runs) {
    const ToolResult result = RunTool(arguments);
    const std::string text = result.out + result.err;
    SCOPED_TRACE(arguments[0] + ": " + text);
    EXPECT_FALSE(text.empty());
    for (const char control : {'\x1b', '\r', '\t', '\x7f', '\xFF'}) {
      EXPECT_EQ(text.find(control), text.npos) << static_cast<int>(control);
    }
    for (const char* const sequence : {"\xC2\x9B", "\xE2\x80\xAE"}) {
      EXPECT_EQ(text.find(sequence), text.npos);
    }
  }
  EXPECT_THAT(RunTool({"info", there}).out, HasSubstr("/" + shown + ": png, "));
  EXPECT_THAT(RunTool({"info", absent}).err, HasSubstr("/no " + shown + ": "));
  EXPECT_EQ(JsonLines(RunTool({"info", "--json", folder_ / "no \x1b.png"}).out).at(0)["file"],
            folder_ / "no \x1b.png")
      << "JSON has escapes of its own";
}

TEST_F(CliHostileUse, PipeNamedLikeAWorldFile_Should_BeLeftAlone) {
  const std::string picture = folder_ / "plan.png", pipe = folder_ / "plan.pgw";
  ASSERT_EQ(RunTool({"convert", in_, picture}).code, 0);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  ASSERT_EQ(symlink(pipe.c_str(), (folder_ / "plan.PGW").c_str()), 0);
  // Each of these would wait for a writer forever.
  EXPECT_EQ(RunTool({"info", picture}).code, 0);
  EXPECT_EQ(RunTool({"convert", picture, folder_ / "out.png"}).code, 0);
  EXPECT_EQ(RunTool({"rotate", "--angle", "90", picture, folder_ / "turned.png"}).code, 0);
  const ToolResult placed = RunTool({"geotiff", picture, folder_ / "out.tif"});
  EXPECT_EQ(placed.code, 4);
  EXPECT_THAT(placed.err, HasSubstr("has no position"));
}

TEST_F(CliHostileUse, TurnedPictureBeyondTheLimit_Should_NameItsFile) {
  const std::string wide = folder_ / "wide.png", turned = folder_ / "turned.png";
  ASSERT_EQ(RunTool({"resize", "--size", "60000x3", in_, wide}).code, 0);
  const ToolResult result =
      RunTool({"rotate", "--angle", "45", wide, turned, "--max-pixels", "1000000"});
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, HasSubstr(turned + ": "));
  EXPECT_THAT(result.err, HasSubstr("limit"));
  EXPECT_EQ(result.err.find("bad_alloc"), std::string::npos);
}

TEST_F(CliHostileUse, Names_Should_BeTakenAsTheyAre) {
  const char* names[] = {"two words.png",
                         "new\nline.png",
                         "--overwrite.png",
                         "\xFF\xFE\x80.png",
                         "\xC3\xA4\xE2\x82\xAC.png",
                         "'\"$(x);*.png"};
  for (const char* name : names) {
    const std::string file = folder_ / name;
    const ToolResult result = RunTool({"convert", "--json", in_, file});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_TRUE(SamePixels(picture_, LoadFile(file)));
    EXPECT_EQ(JsonLines(result.out).size(), 1u) << "one line for each file";
    const ToolResult info = RunTool({"info", "--json", file});
    EXPECT_EQ(info.code, 0);
    EXPECT_EQ(JsonLines(info.out).at(0)["width"], 400);
  }
  EXPECT_EQ(folder_.Names().size(), 1 + std::size(names));
  const std::string longest = folder_ / (std::string(251, 'x') + ".png");
  EXPECT_EQ(RunTool({"convert", in_, longest}).code, 0) << "as long as the system allows";
  const std::string tooLong = folder_ / (std::string(252, 'x') + ".png");
  EXPECT_EQ(RunTool({"convert", in_, tooLong}).code, 4);
}

TEST_F(CliHostileUse, HugeClaims_Should_BeRefusedWithoutTakingTheMemory) {
  GifFile gif = PlainGif(5, 5);
  gif.screenWidth = gif.screenHeight = 65535;
  WriteBytes(folder_ / "huge.gif", gif.Bytes());
  std::vector<uint8_t> chunks = WebpHeaderChunk(webpAnimation, 60000, 60000);
  for (const auto& chunk :
       {WebpChunk("ANIM", {0, 0, 0, 0, 0, 0}),
        WebpFrameChunk(0, 0, 5, 5, ChunksOfWebp(LosslessWebp(GradientRaster(pf24bit, 5, 5))))})
    chunks.insert(chunks.end(), chunk.begin(), chunk.end());
  WriteBytes(folder_ / "huge.webp", WebpFile(chunks));
  for (const char* name : {"huge.gif", "huge.webp"}) {
    for (const std::string verb : {"info", "convert"}) {
      std::vector<std::string> arguments = {verb, folder_ / name};
      arguments.push_back(verb == "convert" ? folder_ / "out.png" : "--verify");
      const ToolResult result = RunTool(arguments);
      EXPECT_EQ(result.code, 3) << name;
      EXPECT_THAT(result.err, HasSubstr(folder_ / name));
      EXPECT_THAT(result.err,
                  AnyOf(HasSubstr("60000 x 60000 pixels"), HasSubstr("65535 x 65535 pixels")));
      EXPECT_LT(result.peakMemory, 128u << 20) << name;
    }
  }
  EXPECT_THAT(folder_.Names(), ElementsAre("huge.gif", "huge.webp", "in.bmp"));
}

TEST_F(CliHostileUse, DataWithoutEnd_Should_BeRefusedWithoutReadingThem) {
  const std::string huge = folder_ / "huge.png";
  WriteText(huge, "no picture");
  std::filesystem::resize_file(huge, uint64_t{20} << 30);  // a hole, no bytes on the disk
  for (const std::string& file : {huge, std::string("/dev/zero")}) {
    for (const std::string verb : {"info", "convert", "exif", "geotiff"}) {
      SCOPED_TRACE(verb + " " + file);
      std::vector<std::string> arguments = {verb, file};
      if (verb == "convert") arguments.push_back(folder_ / "out.png");
      const ToolResult result = RunTool(arguments);
      EXPECT_EQ(result.code, 3);
      EXPECT_THAT(result.err, HasSubstr(file + ": "));
      EXPECT_LT(result.peakMemory, 128u << 20);
    }
  }
}

TEST_F(CliHostileUse, EmptyFile_Should_BeCalledEmpty) {
  WriteText(folder_ / "empty.png", "");
  for (const std::string& file : {folder_ / "empty.png", std::string("/dev/null")}) {
    const ToolResult result = RunTool({"info", file});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.err, HasSubstr(file + ": the file is empty"));
  }
}

}  // namespace
}  // namespace rasterkit::test
