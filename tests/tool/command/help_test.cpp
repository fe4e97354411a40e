#include <algorithm>
#include <array>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "tests/support/environment.h"
#include "tests/tool/support/run_tool.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const std::vector<std::string> kVerbs = {
    "info",      "convert",    "rotate",     "mirror",  "crop",    "resize",    "gray",
    "mono",      "brightness", "contrast",   "adjust",  "whiten",  "recolor",   "key-color",
    "pdf-white", "opaque",     "swap-alpha", "palette", "combine", "watermark", "icon",
    "compare",   "geotiff",    "exif",       "pdf",     "edit",    "save-as"};

/// A terminal that the tool writes to.
class Terminal {
 public:
  explicit Terminal(unsigned short columns) : ours_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    const winsize size{24, columns, 0, 0};
    EXPECT_TRUE(ours_ >= 0 && grantpt(ours_) == 0 && unlockpt(ours_) == 0);
    // Open from the start, so that reading does not end before the tool opens it.
    theirs_ = open(ptsname(ours_), O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(ioctl(theirs_, TIOCSWINSZ, &size), 0);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() { close(ours_); }

  /// Runs the tool and returns what it wrote. Each line ends with "\r\n".
  std::string Run(const std::vector<std::string>& arguments) {
    std::string text;
    std::thread reader([&] {
      std::array<char, 1024> buffer;
      for (ssize_t count = 0; (count = read(ours_, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<size_t>(count));
    });
    EXPECT_EQ(RunTool(arguments, {.fileSizeLimit = {}, .stdoutFile = ptsname(ours_)}).code, 0);
    close(theirs_);
    reader.join();
    return text;
  }

 private:
  int ours_, theirs_ = -1;
};

/// The lines without the command lines to copy, which are never wrapped.
std::vector<std::string> WrappedLines(const std::string& help) {
  std::vector<std::string> lines;
  std::istringstream in(help.substr(0, help.find("\nExample")));
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

size_t LongestLine(const std::vector<std::string>& lines) {
  size_t longest = 0;
  for (const std::string& line : lines) longest = std::max(longest, line.size());
  return longest;
}

TEST(CliHelp, Help_Should_NameVerbsExitCodesAndAnExample) {
  const ToolResult result = RunTool({"--help"});
  EXPECT_EQ(result.code, 0);
  for (const std::string& verb : kVerbs) EXPECT_THAT(result.out, HasSubstr("\n  " + verb + " "));
  for (const char* text : {"Exit codes", "Example", "--version"})
    EXPECT_THAT(result.out, HasSubstr(text));
  EXPECT_THAT(result.err, IsEmpty());
}

TEST(CliHelp, HelpOfEachVerb_Should_ShowAnExampleOfThatVerb) {
  for (const std::string& verb : kVerbs) {
    const ToolResult result = RunTool({verb, "--help"});
    EXPECT_EQ(result.code, 0) << verb;
    EXPECT_THAT(result.out, HasSubstr("rasterkit " + verb + " "));
    EXPECT_THAT(result.out, HasSubstr("Example"));
  }
}

TEST(CliHelp, UsageLine_Should_NameTheFiles) {
  EXPECT_THAT(RunTool({"crop", "--help"}).out,
              HasSubstr("Usage: rasterkit crop [OPTIONS] IN OUT\n"));
  EXPECT_THAT(RunTool({"info", "--help"}).out,
              HasSubstr("Usage: rasterkit info [OPTIONS] IN...\n"));
  EXPECT_THAT(RunTool({"compare", "--help"}).out,
              HasSubstr("Usage: rasterkit compare [OPTIONS] A B\n"));
  EXPECT_THAT(RunTool({"edit", "--help"}).out,
              HasSubstr("Usage: rasterkit edit [OPTIONS] [FILE]\n"));
  EXPECT_THAT(RunTool({"pdf", "--help"}).out,
              HasSubstr("Usage: rasterkit pdf [OPTIONS] IN [OUT]\n"));
}

TEST(CliHelp, OptionsOfAVerb_Should_SayWhatGoesTogether) {
  EXPECT_THAT(RunTool({"whiten", "--help"}).out, HasSubstr("(required)"));
  const std::string text = RunTool({"geotiff", "--help"}).out;
  EXPECT_THAT(text, HasSubstr("(needs --out-dir)"));
  EXPECT_THAT(text, HasSubstr("pixel (not with --point, --world-file)"));
}

TEST(CliHelp, Lines_Should_FitInto80Columns_When_StdoutIsNoTerminal) {
  EXPECT_LE(LongestLine(WrappedLines(RunTool({"--help"}).out)), 80u);
  size_t longest = 0;
  for (const std::string& verb : kVerbs) {
    const auto lines = WrappedLines(RunTool({verb, "--help"}).out);
    EXPECT_LE(LongestLine(lines), 80u) << verb;
    longest = std::max(longest, LongestLine(lines));
    for (const std::string& line : lines) EXPECT_FALSE(line.ends_with(' ')) << verb << ": " << line;
  }
  EXPECT_GT(longest, 75u) << "lines are filled";
}

TEST(CliHelp, Lines_Should_FitTheTerminal) {
  const Environment unset("COLUMNS", "");
  for (const unsigned short columns : {50, 120}) {
    const size_t longest = LongestLine(WrappedLines(Terminal(columns).Run({"combine", "--help"})));
    EXPECT_LE(longest, columns);
    EXPECT_GT(longest, columns - 15u);
  }
}

TEST(CliHelp, Columns_Should_ComeFromTheEnvironmentFirst) {
  const Environment columns("COLUMNS", "60");
  const size_t longest = LongestLine(WrappedLines(Terminal(120).Run({"combine", "--help"})));
  const size_t piped = LongestLine(WrappedLines(RunTool({"combine", "--help"}).out));
  EXPECT_LE(longest, 60u);
  EXPECT_GT(piped, 60u) << "stdout is no terminal";
}

TEST(CliHelp, Version_Should_SayHowFilesAreIsolated_When_Verbose) {
  for (const std::vector<std::string>& line :
       {std::vector<std::string>{"--version", "-v"}, {"-v", "--version"}}) {
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.out,
                testing::ContainsRegex("^rasterkit [0-9.]+\nworker: /.*rasterkit-worker\n"
                                       "Landlock: (version [0-9]+|none: .*)\n"
                                       "system call filter: (yes|no)\n$"));
  }
}

TEST(CliHelp, WrongUsage_Should_NameTheVerbAndTheAcceptedValues) {
  EXPECT_EQ(RunTool({"convert", "a.bmp", "b.png", "--bits", "7"}).err,
            "rasterkit convert: --bits: must be one of 1, 4, 8, 15, 16, 24, 32, not '7'\n"
            "Run 'rasterkit convert --help' for help.\n");
  EXPECT_EQ(
      RunTool({"mono", "a.bmp", "b.png", "--threshold", "257"}).err,
      "rasterkit mono: --threshold: must be a whole number from 0 to 256, or otsu, not '257'\n"
      "Run 'rasterkit mono --help' for help.\n");
  EXPECT_EQ(RunTool({"whiten", "a.bmp", "b.bmp"}).err,
            "rasterkit whiten: --threshold is required\n"
            "Run 'rasterkit whiten --help' for help.\n");
  EXPECT_EQ(RunTool({"convert", "a.bmp", "b.png", "--quality"}).err,
            "rasterkit convert: --quality needs a value\n"
            "Run 'rasterkit convert --help' for help.\n");
  EXPECT_EQ(RunTool({"convert", "a.bmp", "b.png", "--bits", "1", "--bits", "4"}).err,
            "rasterkit convert: --bits was given more than once\n"
            "Run 'rasterkit convert --help' for help.\n");
  EXPECT_EQ(RunTool({"compare", "a.bmp"}).err,
            "rasterkit compare: the required files are A B\n"
            "Run 'rasterkit compare --help' for help.\n");
  EXPECT_EQ(RunTool({"info", "a.bmp", "--no-such"}).err,
            "rasterkit info: unknown option: --no-such\n"
            "Run 'rasterkit info --help' for help.\n");
  EXPECT_EQ(RunTool({}).err, "rasterkit: a verb is required\nRun 'rasterkit --help' for help.\n");
}

TEST(CliHelp, MistypedWords_Should_NameWhatIsMeant) {
  EXPECT_EQ(RunTool({"rotat", "a.bmp", "b.bmp", "--angle", "3"}).err,
            "rasterkit: unknown verb: rotat; did you mean rotate?\n"
            "Run 'rasterkit --help' for help.\n");
  EXPECT_EQ(RunTool({"convert", "a.bmp", "b.bmp", "--qualty=80"}).err,
            "rasterkit convert: unknown option: --qualty=80; did you mean --quality?\n"
            "Run 'rasterkit convert --help' for help.\n");
  EXPECT_EQ(
      RunTool({"combine", "a.bmp", "b.bmp", "--with", "c.bmp", "--mode", "shadw"}).err,
      "rasterkit combine: --mode: must be one of auto, grid, key, transparent, shadow, overwrite, "
      "into-white, not 'shadw'; did you mean shadow?\n"
      "Run 'rasterkit combine --help' for help.\n");
  EXPECT_EQ(RunTool({"no-such-verb"}).err,
            "rasterkit: unknown verb: no-such-verb\nRun 'rasterkit --help' for help.\n");
}

TEST(CliHelp, Colors_Should_BeListed) {
  EXPECT_THAT(RunTool({"--help"}).out, HasSubstr("COLOR"));
  EXPECT_THAT(RunTool({"--help"}).out, HasSubstr("skyblue"));
}

TEST(CliHelp, Version_Should_BeNameAndNumber) {
  const ToolResult result = RunTool({"--version"});
  EXPECT_EQ(result.code, 0);
  EXPECT_THAT(result.out, testing::ContainsRegex("^rasterkit [0-9]+\\.[0-9]+\\.[0-9]+\n$"));
}

TEST(CliHelp, WrongUsage_Should_Exit2AndPrintNothingOnStdout) {
  const std::vector<std::vector<std::string>> lines = {
      {},
      {"no-such-verb"},
      {"info"},
      {"info", "--no-such-option", "a.bmp"},
      {"convert", "only-one.bmp"},
      {"convert", "a.bmp", "b.bmp", "c.bmp"},
      {"convert", "a.bmp", "b.xyz"},
      {"convert", "a.bmp", "b"},
      {"convert", "a.bmp", "b.jgw"},
      {"convert", "a.bmp", "b.png", "--bits", "7"},
      {"convert", "a.bmp", "b.jpg", "--quality", "0"},
      {"convert", "a.bmp", "b.jpg", "--quality", "101"},
      {"convert", "a.bmp", "b.png", "--png-level", "13"},
      {"convert", "a.bmp", "b.png", "--angle", "much"},
      {"convert", "a.bmp", "b.png", "--angle", "nan"},
      {"convert", "a.bmp", "b.png", "--angle", "inf"},
      {"convert", "a.bmp", "b.png", "--background", "reddish"},
      {"convert", "a.bmp", "b.png", "--jobs", "0"},
      {"convert", "a.bmp", "b.png", "--type", "png"},
      {"convert", "--out-dir", "d", "--type", "gif", "a.bmp"},
      {"rotate", "a.bmp", "b.bmp"},
      {"adjust", "a.bmp", "b.bmp"},
      {"resize", "a.bmp", "b.bmp"},
      {"crop", "a.bmp", "b.bmp"},
      {"crop", "a.bmp", "b.bmp", "--dialog", "--jobs", "2"},
      {"mirror", "a.bmp", "b.bmp", "--dialog"},
      {"rotate", "a.bmp", "b.bmp", "--angle", "1", "--threads", "0"},
  };
  for (const auto& line : lines) {
    const ToolResult result = RunTool(line);
    EXPECT_EQ(result.code, 2) << testing::PrintToString(line);
    EXPECT_THAT(result.out, IsEmpty()) << testing::PrintToString(line);
    EXPECT_FALSE(result.err.empty()) << testing::PrintToString(line);
  }
}

}  // namespace
}  // namespace rasterkit::test
