// --max-memory, --max-pixels, --max-side, --timeout, their environment variables, and files that
// state far larger pictures than they can hold.

#include <filesystem>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/environment.h"
#include "tests/support/oversized/oversized_files.h"
#include "tests/support/same_pixels.h"
#include "tests/support/sanitizers.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr uint64_t kMiB = uint64_t{1} << 20;

class CliLimits : public testing::Test {
 protected:
  CliLimits() { SavePngFile(folder_ / "in.png", GrayRaster(20, 30)); }

  ToolResult Convert(const std::vector<std::string>& options) {
    std::vector<std::string> line = {"convert", folder_ / "in.png", folder_ / "out.png",
                                     "--overwrite"};
    line.insert(line.end(), options.begin(), options.end());
    return RunTool(line);
  }
  ToolResult Info(const std::vector<std::string>& options) {
    std::vector<std::string> line = {"info", "--verify", folder_ / "in.png"};
    line.insert(line.end(), options.begin(), options.end());
    return RunTool(line);
  }
  void ExpectRefused(const ToolResult& result, const std::string& reason,
                     const std::string& option) {
    EXPECT_EQ(result.code, 3) << result.err;
    EXPECT_THAT(result.err, AllOf(HasSubstr("in.png: "), HasSubstr(reason),
                                  HasSubstr("(" + option + " changes it)")));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "out.png"));
  }

  TempFolder folder_;
};

TEST_F(CliLimits, Pixels_Should_BeRefusedBeyondTheLimit) {
  ExpectRefused(Convert({"--max-pixels", "599"}), "has 600 pixels, the limit is 599",
                "--max-pixels");
  ExpectRefused(Info({"--max-pixels", "599"}), "has 600 pixels, the limit is 599", "--max-pixels");
  EXPECT_EQ(Info({"--max-pixels", "600"}).code, 0);
  EXPECT_EQ(Convert({"--max-pixels", "600"}).code, 0);
}

TEST_F(CliLimits, Sides_Should_BeRefusedBeyondTheLimit) {
  ExpectRefused(Convert({"--max-side", "29"}), "has 30 pixels per side, the limit is 29",
                "--max-side");
  ExpectRefused(Info({"--max-side", "29"}), "the limit is 29", "--max-side");
  EXPECT_EQ(Info({"--max-side", "30"}).code, 0);
  EXPECT_EQ(Convert({"--max-side", "30"}).code, 0);
}

TEST_F(CliLimits, Memory_Should_BeRefusedBeyondTheLimit) {
  ExpectRefused(Info({"--max-memory", "599"}), "needs 600 bytes, the limit is 599 bytes",
                "--max-memory");
  // Here the rows that go to the file do not fit.
  const ToolResult refused = Convert({"--max-memory", "599", "--angle", "180"});
  EXPECT_EQ(refused.code, 4);
  EXPECT_THAT(refused.err, AllOf(HasSubstr("out.png: "), HasSubstr("is 599 bytes"),
                                 HasSubstr("(--max-memory changes it)")));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out.png"));
  EXPECT_EQ(Info({"--max-memory", "600"}).code, 0);
  EXPECT_EQ(Convert({"--max-memory", "10K"}).code, 0);
}

TEST_F(CliLimits, MemoryOfAllPictures_Should_BeRefusedBeyondTheLimit) {
  // Each of the two pictures fits, both together do not.
  SavePngFile(folder_ / "other.png", GrayRaster(20, 30));
  const std::vector<std::string> line = {"compare", folder_ / "in.png", folder_ / "other.png",
                                         "--max-memory"};
  const auto with = [&](const std::string& size) {
    std::vector<std::string> all = line;
    all.push_back(size);
    return RunTool(all);
  };
  const ToolResult refused = with("1199");
  EXPECT_EQ(refused.code, 3);
  EXPECT_THAT(refused.err,
              AllOf(HasSubstr(" bytes in use, the limit of the process is 1199 bytes "),
                    HasSubstr("(--max-memory changes it)")));
  EXPECT_EQ(with("100K").code, 0);
}

TEST_F(CliLimits, Time_Should_EndThePicture) {
  ExpectRefused(Info({"--timeout", "0.000001"}), "the time limit of 1e-06 seconds is over",
                "--timeout");
  const ToolResult convert = Convert({"--timeout", "0.000001"});
  EXPECT_NE(convert.code, 0);
  EXPECT_THAT(convert.err, HasSubstr("is over (--timeout changes it)"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out.png"));
  EXPECT_EQ(Info({"--timeout", "3600"}).code, 0);
  EXPECT_EQ(Convert({"--timeout", "3600"}).code, 0);
}

TEST_F(CliLimits, Outputs_Should_HaveTheLimitsToo) {
  const ToolResult result = RunTool({"resize", folder_ / "in.png", folder_ / "out.png", "--size",
                                     "100x100", "--max-pixels", "9999"});
  EXPECT_EQ(result.code, 4) << result.err;
  EXPECT_THAT(result.err, HasSubstr("has 10000 pixels, the limit is 9999 (--max-pixels"));
}

TEST_F(CliLimits, Sizes_Should_HaveUnits) {
  for (const char* size : {"1000", "1K", "1k", "1.5K", "1M", "1G", "2T", "0.6K"}) {
    EXPECT_EQ(Info({"--max-memory", size}).code, 0) << size;
  }
  EXPECT_EQ(Info({"--max-memory", "0.5K"}).code, 3);
  for (const char* size : {"x", "0", "-1", "K", "1X", "1KB", "1e9", "nan", "inf", "1.5.2", "0.1",
                           "9999999T", ".", " 1"}) {
    const ToolResult result = Info({std::string("--max-memory=") + size});
    EXPECT_EQ(result.code, 2) << size;
    EXPECT_THAT(result.err, AllOf(HasSubstr("--max-memory"), HasSubstr("must be a number of bytes"),
                                  HasSubstr(size)));
  }
}

TEST_F(CliLimits, InvalidValues_Should_BeWrongUsage) {
  for (const char* option : {"--max-pixels", "--max-side"}) {
    for (const char* value : {"0", "-5", "x", "1.5", "99999999999999999999", "+1"}) {
      const ToolResult result = Info({std::string(option) + "=" + value});
      EXPECT_EQ(result.code, 2) << option << value;
      EXPECT_THAT(result.err, HasSubstr("must be a whole number from 1"));
    }
  }
  for (const char* value : {"0", "-1", "x", "nan", "inf", ""}) {
    const ToolResult result = Info({std::string("--timeout=") + value});
    EXPECT_EQ(result.code, 2) << value;
  }
}

TEST_F(CliLimits, Variables_Should_BeLimitsToo) {
  const std::vector<std::array<std::string, 3>> limits = {
      {"RASTERKIT_MAX_MEMORY", "599", "--max-memory"},
      {"RASTERKIT_MAX_PIXELS", "599", "--max-pixels"},
      {"RASTERKIT_MAX_SIDE", "29", "--max-side"},
      {"RASTERKIT_TIMEOUT", "0.000001", "--timeout"}};
  for (const auto& [variable, value, option] : limits) {
    const Environment environment(variable, value);
    const ToolResult refused = Info({});
    EXPECT_EQ(refused.code, 3) << variable;
    EXPECT_THAT(refused.err, HasSubstr(option));
    EXPECT_EQ(Info({option, "3600"}).code, 0) << "an option wins over " << variable;
  }
}

TEST_F(CliLimits, InvalidVariables_Should_BeWrongUsage) {
  for (const char* variable : {"RASTERKIT_MAX_MEMORY", "RASTERKIT_MAX_PIXELS", "RASTERKIT_MAX_SIDE",
                               "RASTERKIT_TIMEOUT"}) {
    const Environment environment(variable, "much");
    const ToolResult result = Info({});
    EXPECT_EQ(result.code, 2) << variable;
    EXPECT_THAT(result.err, AllOf(HasSubstr(variable), HasSubstr("must be"), HasSubstr("'much'")));
  }
  const Environment environment("RASTERKIT_MAX_MEMORY", "");
  EXPECT_EQ(Info({}).code, 0) << "an empty variable is not set";
}

TEST_F(CliLimits, EveryVerb_Should_HaveTheOptions) {
  for (const char* verb : {"info", "convert", "rotate", "compare", "geotiff", "exif", "pdf", "edit",
                           "save-as", "icon", "palette"}) {
    const std::string help = RunTool({verb, "--help"}).out;
    for (const char* option : {"--max-memory", "--max-pixels", "--max-side", "--timeout"}) {
      EXPECT_THAT(help, HasSubstr(option)) << verb;
    }
  }
}

TEST_F(CliLimits, OversizedFiles_Should_BeRefusedBeforeMemoryIsTaken) {
  for (const NamedFile& bomb : OversizedFiles()) {
    SCOPED_TRACE(bomb.name);
    const std::string file = folder_ / bomb.name;
    WriteBytes(file, bomb.bytes);
    ASSERT_LT(bomb.bytes.size(), 80000u);
    const ToolResult convert = RunTool({"convert", file, folder_ / "out.bmp"});
    EXPECT_EQ(convert.code, 3) << convert.err;
    EXPECT_THAT(convert.err, HasSubstr(bomb.name));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "out.bmp"));
    const ToolResult info = RunTool({"info", "--verify", file});
    const bool isDrawing = bomb.name.ends_with("emf");
    // The facts of a drawing need no picture of its own size.
    EXPECT_EQ(info.code, isDrawing ? 0 : 3);
    if (!isDrawing) {
      EXPECT_THAT(convert.err, HasSubstr("the file is far too small to hold it"));
      EXPECT_THAT(info.err, HasSubstr("the file is far too small to hold it"));
    } else {
      EXPECT_THAT(convert.err, HasSubstr("--size"));
    }
    if (IsSanitized()) continue;
    EXPECT_LT(convert.peakMemory, 60 * kMiB);
    EXPECT_LT(info.peakMemory, (isDrawing ? 200 : 60) * kMiB);
  }
}

TEST_F(CliLimits, OversizedDrawing_Should_BeDrawnAtASizeThatIsGiven) {
  WriteBytes(folder_ / "big.emf", OversizedEmf(16000, 72000));
  EXPECT_EQ(RunTool({"convert", folder_ / "big.emf", folder_ / "out.png", "--size", "100x"}).code,
            0);
}

TEST_F(CliLimits, CutFileWithinTheSlack_Should_TakeMemoryForTheRowsThatAreThere) {
  if (IsSanitized()) GTEST_SKIP() << "the sanitizer takes memory of its own";
  // A bitmap file of 250 MB with one row of 64: what is missing is 0, and takes nothing.
  WriteBytes(folder_ / "cut.bmp", OversizedPlainBmp(25000, 10000, 160));
  const ToolResult result = RunTool({"info", "--verify", folder_ / "cut.bmp"});
  EXPECT_EQ(result.code, 3) << result.err;
  EXPECT_THAT(result.err, HasSubstr("160 of 10000 rows are complete"));
  EXPECT_LT(result.peakMemory, 60 * kMiB);
}

/// Pictures that are turned several at a time.
class CliMemoryOfJobs : public testing::Test {
 protected:
  static constexpr int kPictures = 12;

  CliMemoryOfJobs() {
    std::filesystem::create_directory(folder_ / "in");
    for (int i = 0; i < kPictures; ++i) {
      names_.push_back(fmt::format("{}/picture-{:02}.png", folder_ / "in", i));
      SavePngFile(names_.back(), GrayRaster(300 + i, 200));
    }
  }

  ToolResult Rotate(const std::string& out, const std::vector<std::string>& options) {
    std::vector<std::string> line = {"rotate",      "--angle",   "10", "--out-dir",
                                     folder_ / out, "--threads", "1"};
    line.insert(line.end(), options.begin(), options.end());
    line.insert(line.end(), names_.begin(), names_.end());
    return RunTool(line);
  }

  void ExpectSameOutputs(const std::string& a, const std::string& b) {
    for (int i = 0; i < kPictures; ++i) {
      const std::string name = fmt::format("picture-{:02}.png", i);
      EXPECT_EQ(ReadBytes(folder_ / a + "/" + name), ReadBytes(folder_ / b + "/" + name)) << name;
    }
  }

  TempFolder folder_;
  std::vector<std::string> names_;
};

TEST_F(CliMemoryOfJobs, Jobs_Should_WaitForMemoryInsteadOfFailing) {
  ASSERT_EQ(Rotate("plain", {}).code, 0);
  // The least memory with which one job after the other is done, to a few percent.
  uint64_t enough = 1000;
  while (Rotate("alone", {"--max-memory", std::to_string(enough), "--overwrite"}).code != 0) {
    enough = enough * 11 / 10;
    ASSERT_LT(enough, 10 * kMiB);
  }
  for (const char* jobs : {"2", "12"}) {
    for (const uint64_t memory : {enough, enough * 3 / 2, enough * 3}) {
      const ToolResult result =
          Rotate("many", {"--max-memory", std::to_string(memory), "--jobs", jobs, "--overwrite"});
      EXPECT_EQ(result.code, 0) << memory << result.err;
      EXPECT_EQ(result.err, "");
      ExpectSameOutputs("plain", "many");
    }
  }
}

TEST_F(CliMemoryOfJobs, JobThatNeverFits_Should_FailAsItDoesAlone) {
  SavePngFile(names_[5], GrayRaster(3000, 2000));
  const ToolResult result = Rotate("out", {"--max-memory", "3M", "--jobs", "12", "--continue"});
  EXPECT_EQ(result.code, 4);
  EXPECT_THAT(result.err, AllOf(HasSubstr("picture-05.png"), HasSubstr("--max-memory")));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_ / "out"),
                          std::filesystem::directory_iterator()),
            kPictures - 1);
}

}  // namespace
}  // namespace rasterkit::test
