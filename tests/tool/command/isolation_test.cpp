// --isolate: what is read in a worker process is what is read here.

#include <cerrno>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include "tests/support/environment.h"
#include "tests/support/test_pictures.h"
#include "tests/tool/support/run_tool.h"
#include "tests/tool/support/sample_files.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

std::vector<std::string> Samples() {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(RASTERKIT_SAMPLES)) {
    const std::string extension = entry.path().extension().string();
    if (extension != ".cpp" && extension != ".h") files.push_back(entry.path().string());
  }
  return files;
}

std::string Sample(const std::string& name) {
  return std::string(RASTERKIT_SAMPLES) + "/" + name;
}

/// Runs the verb with and without the option.
struct Both {
  explicit Both(std::vector<std::string> arguments) : here(RunTool(arguments)) {
    arguments.push_back("--isolate");
    isolated = RunTool(arguments);
  }
  void ExpectSame() const {
    EXPECT_EQ(isolated.code, here.code);
    EXPECT_EQ(isolated.out, here.out);
    EXPECT_EQ(isolated.err, here.err);
  }

  ToolResult here, isolated;
};

TEST(CliIsolation, Info_Should_PrintTheSame) {
  std::vector<std::string> arguments = {"info", "--json"};
  for (const std::string& file : Samples()) arguments.push_back(file);
  arguments.push_back(Sample("missing.png"));
  const Both both(arguments);
  both.ExpectSame();
  EXPECT_EQ(both.here.code, 3);
  EXPECT_THAT(both.here.out, HasSubstr("\"ok\":true"));
}

TEST(CliIsolation, Grid_Should_BeTheSame) {
  const Both both({"geotiff", Sample("terrain.tif"), "--at", "1,1", "--json"});
  both.ExpectSame();
  EXPECT_EQ(both.here.code, 0);
}

TEST(CliIsolation, Outputs_Should_BeTheSame) {
  const TempFolder folder;
  const std::vector<std::vector<std::string>> verbs = {
      {"convert"},
      {"rotate", "--angle", "30"},
      {"gray"},
      {"geotiff", "--origin", "1,2", "--pixel-size", "3"}};
  for (const char* name : {"plan.png", "orientation-6.jpg", "terrain.tif", "plan-colored.bmp"}) {
    for (const std::vector<std::string>& verb : verbs) {
      std::vector<uint8_t> outputs[2];
      for (const bool isIsolated : {false, true}) {
        std::vector<std::string> arguments = verb;
        const std::string output = folder / (isIsolated ? "isolated.tif" : "here.tif");
        arguments.insert(arguments.begin() + 1, {Sample(name), output, "--overwrite"});
        if (isIsolated) arguments.emplace_back("--isolate");
        const ToolResult result = RunTool(arguments);
        EXPECT_EQ(result.code, 0) << name << " " << verb[0] << ": " << result.err;
        outputs[isIsolated ? 1 : 0] = ReadBytes(output);
      }
      EXPECT_EQ(outputs[1], outputs[0]) << name << " " << verb[0];
    }
  }
}

TEST(CliIsolation, Jobs_Should_WorkTogetherWithIt) {
  const TempFolder folder;
  std::vector<std::string> arguments = {"convert",   "--isolate",   "--jobs", "8",
                                        "--out-dir", folder.Path(), "--type", "png"};
  for (int i = 1; i <= 8; ++i) {
    arguments.push_back(Sample("orientation-" + std::to_string(i) + ".jpg"));
  }
  const ToolResult result = RunTool(arguments);
  EXPECT_EQ(result.code, 0) << result.err;
  const ToolResult same =
      RunTool({"compare", folder / "orientation-1.png", folder / "orientation-8.png", "--isolate",
               "--tolerance", "255"});
  EXPECT_EQ(same.code, 0) << same.err;
}

TEST(CliIsolation, File_Should_NotBeRead_When_TheWorkerCannotBeLockedIn) {
  if (!CanFilterCalls()) GTEST_SKIP() << "no filters of system calls";
  ToolSetup setup;
  setup.failingCalls = {{SYS_seccomp, ENOSYS, 0}};
  for (const std::vector<std::string>& line :
       {std::vector<std::string>{"info", "--isolate", Sample("terrain.tif")},
        {"--version", "-v"}}) {
    const ToolResult result = RunTool(line, setup);
    EXPECT_THAT(result.out + result.err, HasSubstr("the system has no filter of system calls"));
  }
}

/// The tool loads its library from a folder of the test, with another worker beside it.
class CliLyingWorker : public testing::Test {
 protected:
  void SetUp() override {
    const std::filesystem::path library = RASTERKIT_LIBRARY;
    std::filesystem::create_directory(Libraries());
    std::filesystem::copy_file(library, Libraries() / library.filename());
    std::filesystem::copy_file(RASTERKIT_LYING_WORKER, Libraries() / "rasterkit-worker");
  }

  std::filesystem::path Libraries() const { return folder_ / "lib"; }

  ToolResult Run(const std::vector<std::string>& arguments) const {
    const Environment environment("LD_LIBRARY_PATH", Libraries().string());
    return RunTool(arguments);
  }

  std::string FileWith(const std::string& name, const std::string& lie) const {
    WriteText(folder_ / name, lie);
    return folder_ / name;
  }

  TempFolder folder_;
};

TEST(CliIsolation, Worker_Should_TakeItsShareOfTheMemory) {
  const TempFolder folder;
  const std::string file = folder / "large.png";
  SavePngFile(file, Raster(pf8bit, 9000, 9000));
  const auto convert = [&](const std::string& jobs) {
    return RunTool({"convert", file, folder / ("out" + jobs + ".png"), "--isolate", "--max-memory",
                    "300M", "--jobs", jobs, "--angle", "180"});
  };
  const ToolResult whole = convert("1");
  EXPECT_EQ(whole.code, 0) << whole.err;
  const ToolResult quarter = convert("4");
  EXPECT_EQ(quarter.code, 3);
  EXPECT_THAT(quarter.err, HasSubstr("--max-memory"));
}

TEST_F(CliLyingWorker, Crash_Should_Exit3_AndNameTheFile) {
  const std::string file = FileWith("bad.png", "abort");
  const ToolResult result = Run({"convert", "--isolate", file, folder_ / "out.png"});
  EXPECT_EQ(result.code, 3);
  EXPECT_THAT(result.err, HasSubstr(file + ": "));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "out.png"));
}

TEST_F(CliLyingWorker, Crash_Should_NotEndTheOtherFiles) {
  const std::string bad = FileWith("bad.png", "abort"), lie = FileWith("lie.png", "fewer rows"),
                    end = FileWith("end.png", "exit");
  const ToolResult result = Run({"convert", "--isolate", "--json", "--continue", "--out-dir",
                                 folder_ / "out", bad, lie, end});
  EXPECT_EQ(result.code, 3);
  const std::vector<nlohmann::json> lines = JsonLines(result.out);
  ASSERT_EQ(lines.size(), 3u);
  for (size_t i = 0; i < lines.size(); ++i) {
    EXPECT_FALSE(lines[i].at("ok")) << i;
    EXPECT_THAT(lines[i].at("error").get<std::string>(),
                HasSubstr(lines[i].at("file").get<std::string>() + ": "));
  }
  EXPECT_EQ(std::filesystem::is_empty(folder_ / "out"), true);
}

TEST_F(CliLyingWorker, MissingWorker_Should_Exit3_AndSayWhereItBelongs) {
  std::filesystem::remove(Libraries() / "rasterkit-worker");
  const ToolResult result = Run({"info", "--isolate", Sample("plan.png")});
  EXPECT_EQ(result.code, 3);
  EXPECT_THAT(result.err, HasSubstr("rasterkit-worker"));
  EXPECT_EQ(Run({"info", Sample("plan.png")}).code, 0);
}

}  // namespace
}  // namespace rasterkit::test
