#include <stdexcept>

#include <gtest/gtest.h>

#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/runtime/error_class.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/runtime/worker/child_count.h"
#include "tests/support/temp_folder.h"

/// A worker that crashes, hangs or lies gives an ordinary error that names the file.
namespace rasterkit {
namespace {

class LyingWorker : public testing::Test {
 protected:
  LyingWorker() { detail::SetWorkerProgram(RASTERKIT_LYING_WORKER); }
  ~LyingWorker() override { detail::SetWorkerProgram({}); }

  std::string FileWith(std::string_view lie) const { return folder_.Write("picture.png", lie); }

  LoadedFrame Read(std::string_view lie) {
    reading_.isolation = Isolation::process;
    LoadedFrame picture;
    ReadPicture(picture, FileWith(lie), reading_);
    return picture;
  }

  /// The class and the text of the error.
  std::string ErrorOf(std::string_view lie) {
    try {
      Read(lie);
      return {};
    } catch (const Error& error) {
      EXPECT_EQ(error.File(), folder_ / "picture.png");
      return ErrorClassName(error) + ": " + error.Reason();
    }
  }

  const test::TempFolder folder_;
  PictureReading reading_;
};

TEST_F(LyingWorker, Truth_Should_BeTaken) {
  const LoadedFrame picture = Read("truth");
  EXPECT_EQ(picture.type, PictureType::png);
  EXPECT_EQ(picture.frame.rows.Width(), 8);
}

TEST_F(LyingWorker, Lies_Should_BeFormatErrors) {
  for (const char* lie : {"wrong kind", "wrong orientation", "fields too long", "fields too short",
                          "endless fields", "endless rows", "fewer rows", "long answer", "no rows",
                          "short memory", "no memory", "huge picture"}) {
    const size_t files = test::OpenFiles();
    const std::string error = ErrorOf(lie);
    EXPECT_EQ(error.find("FormatError: "), 0u) << lie << ": " << error;
    EXPECT_TRUE(test::HasNoChildrenSoon());
    EXPECT_EQ(test::OpenFiles(), files) << lie;
  }
}

TEST_F(LyingWorker, Crash_Should_BeAFormatError) {
  EXPECT_EQ(ErrorOf("abort").find("FormatError: "), 0u) << ErrorOf("abort");
  EXPECT_EQ(ErrorOf("exit").find("FormatError: "), 0u) << ErrorOf("exit");
}

TEST_F(LyingWorker, Facts_Should_StayAsTheyWere_AfterALie) {
  LoadedFrame picture;
  picture.frames = 5;
  reading_.isolation = Isolation::process;
  EXPECT_THROW(ReadPicture(picture, FileWith("fewer rows"), reading_), FormatError);
  EXPECT_EQ(picture.frames, 5);
  EXPECT_EQ(picture.type, PictureType::unknown);
}

TEST_F(LyingWorker, Hang_Should_EndWithTheTimeOfTheCall) {
  Limits limits;
  limits.seconds = 0.2;
  const LimitsScope scope(limits);
  EXPECT_EQ(ErrorOf("hang").find("TimeLimitError: "), 0u);
}

TEST_F(LyingWorker, Hang_Should_EndWhenTheHostStops) {
  int questions = 0;
  reading_.keepGoing = [&] { return ++questions < 3; };
  EXPECT_EQ(ErrorOf("hang"), "Error: reading was canceled");
  EXPECT_EQ(questions, 3);
  reading_.keepGoing = []() -> bool { throw std::runtime_error("stop"); };
  EXPECT_THROW(Read("hang"), std::runtime_error);
}

/// A size that no piece of memory backs must not be allocated.
TEST_F(LyingWorker, Sizes_Should_KeepTheLimitsOfTheHost) {
  Limits limits;
  limits.pictureBytes = 100;
  const LimitsScope scope(limits);
  EXPECT_EQ(ErrorOf("truth").find("LimitError: "), 0u);
}

TEST_F(LyingWorker, Facts_Should_CountAsMemory) {
  EXPECT_NE(ErrorOf("large fields").find("the facts are too long"), std::string::npos);
  Limits limits;
  limits.processBytes = 1 << 20;
  const LimitsScope scope(limits);
  EXPECT_EQ(ErrorOf("truth"), "");
  EXPECT_EQ(ErrorOf("long fields").find("LimitError: "), 0u) << ErrorOf("long fields");
}

TEST_F(LyingWorker, MissingProgram_Should_BeAnUnsupportedError) {
  detail::SetWorkerProgram(folder_ / "no-such-program");
  const std::string error = ErrorOf("truth");
  EXPECT_NE(error.find("Error: "), std::string::npos);
  EXPECT_NE(error.find("no-such-program"), std::string::npos) << error;
}

}  // namespace
}  // namespace rasterkit
