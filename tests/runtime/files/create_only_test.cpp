// Saves that must not replace a file.

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "tests/runtime/files/replaced_calls.h"
#include "tests/runtime/files/save_text.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using detail::Calls;
using testing::ElementsAre;

constexpr AtomicFileOptions kCreate{IfExists::fail, true};
constexpr int kNameless = O_TMPFILE & ~O_DIRECTORY;

/// What the calls were asked to do, one letter per call.
std::string steps;
/// The error of each call that gives a name; 0 does it.
int linkError = 0, renameError = 0, temporaryLinkError = 0;
bool hasNamelessFiles = true;

/// The calls of a system that lacks what the test says.
class LimitedCalls {
 public:
  LimitedCalls() {
    steps.clear();
    linkError = renameError = temporaryLinkError = 0;
    hasNamelessFiles = true;
    base_ = guard_.Before();
    Calls().openAt = [](int folder, const char* name, int flags, mode_t mode) {
      if ((flags & kNameless) != 0 && !hasNamelessFiles) {
        errno = EOPNOTSUPP;
        return -1;
      }
      if ((flags & O_EXCL) != 0 && (flags & O_WRONLY) != 0) steps += 'c';
      return base_.openAt(folder, name, flags, mode);
    };
    Calls().linkAt = [](int oldFolder, const char* oldName, int folder, const char* name,
                        int flags) {
      const bool isNameless = (flags & AT_SYMLINK_FOLLOW) != 0;
      steps += isNameless ? 'l' : 'L';
      const int error = isNameless ? linkError : temporaryLinkError;
      if (error == 0) return base_.linkAt(oldFolder, oldName, folder, name, flags);
      errno = error;
      return -1;
    };
    Calls().renameAt = [](int folder, const char* oldName, const char* name, unsigned flags) {
      steps += flags != 0 ? 'r' : 'R';
      if (flags == 0 || renameError == 0) return base_.renameAt(folder, oldName, name, flags);
      errno = renameError;
      return -1;
    };
  }

 private:
  inline static detail::FileCalls base_;
  const CallsGuard guard_;
};

class CreateOnly : public testing::Test {
 protected:
  /// Saves, and expects the steps by which the file gets its name.
  void ExpectSteps(const std::string& expected) {
    SaveText(name_, "new", kCreate);
    EXPECT_EQ(steps, expected);
    EXPECT_EQ(ReadFile(name_), "new");
    EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
  }

  /// Another program creates the file while this one is written.
  void ExpectLostRace() {
    AtomicFile file(name_, kCreate);
    WriteText(file, "mine");
    folder_.Write("a.png", "theirs");
    EXPECT_THROW(file.Commit(), FileExistsError);
    EXPECT_EQ(ReadFile(name_), "theirs");
  }

  const LimitedCalls calls_;
  const TempFolder folder_;
  const std::string name_ = folder_ / "a.png";
};

TEST_F(CreateOnly, ExistingFile_IsRefusedAtOnce) {
  folder_.Write("a.png", "old");
  try {
    const AtomicFile file(name_, kCreate);
    ADD_FAILURE() << "opened";
  } catch (const FileExistsError& error) {
    EXPECT_EQ(error.File(), name_);
  }
  EXPECT_EQ(ReadFile(name_), "old");
}

TEST_F(CreateOnly, NamelessFile_IsLinkedToItsName) {
  ExpectSteps("l");
}

TEST_F(CreateOnly, NamelessFile_LosesTheRace) {
  ExpectLostRace();
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

TEST_F(CreateOnly, NamedFile_IsRenamedToAFreeName) {
  hasNamelessFiles = false;
  ExpectSteps("r");
}

TEST_F(CreateOnly, NamedFile_LosesTheRace) {
  hasNamelessFiles = false;
  ExpectLostRace();
  EXPECT_EQ(steps, "r");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

TEST_F(CreateOnly, WithoutCarefulRename_TheTemporaryFileIsLinked) {
  hasNamelessFiles = false;
  for (const int error : {EINVAL, ENOSYS}) {
    std::filesystem::remove(name_);
    steps.clear();
    renameError = error;
    ExpectSteps("rL");
  }
}

TEST_F(CreateOnly, WithoutCarefulRename_LosesTheRace) {
  hasNamelessFiles = false;
  renameError = EINVAL;
  ExpectLostRace();
  EXPECT_EQ(steps, "rL");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

TEST_F(CreateOnly, LinkThatIsMadeAndReportedAsAnObstacle_IsTheNewFile) {
  hasNamelessFiles = false;
  renameError = EINVAL;
  static detail::FileCalls limited;
  limited = Calls();
  Calls().linkAt = [](int oldFolder, const char* oldName, int folder, const char* name, int flags) {
    EXPECT_EQ(limited.linkAt(oldFolder, oldName, folder, name, flags), 0);
    errno = EEXIST;
    return -1;
  };
  ExpectSteps("rL");
}

TEST_F(CreateOnly, WithoutLinks_TheNameIsClaimedFirst) {
  hasNamelessFiles = false;
  renameError = EINVAL;
  temporaryLinkError = EPERM;
  ExpectSteps("rLcR");
}

TEST_F(CreateOnly, WithoutLinks_LosesTheRace) {
  hasNamelessFiles = false;
  renameError = EINVAL;
  temporaryLinkError = EPERM;
  ExpectLostRace();
  EXPECT_EQ(steps, "rLc");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

TEST_F(CreateOnly, OtherErrors_AreErrorsOfTheFile) {
  linkError = EIO;
  EXPECT_THROW(SaveText(name_, "new", kCreate), FileError);
  hasNamelessFiles = false;
  renameError = EIO;
  EXPECT_THROW(SaveText(name_, "new", kCreate), FileError);
  EXPECT_THAT(folder_.Names(), testing::IsEmpty());
}

TEST_F(CreateOnly, PipesAndDevices_AreWritten) {
  EXPECT_NO_THROW(SaveText("/dev/null", "x", kCreate));
}

TEST_F(CreateOnly, ReplacingSave_ReplacesWhatAppearsMeanwhile) {
  AtomicFile file(name_);
  WriteText(file, "mine");
  folder_.Write("a.png", "theirs");
  file.Commit();
  EXPECT_EQ(ReadFile(name_), "mine");
  EXPECT_THAT(folder_.Names(), ElementsAre("a.png"));
}

mode_t ModeOf(const std::string& name) {
  struct stat status {};
  EXPECT_EQ(lstat(name.c_str(), &status), 0);
  return status.st_mode;
}

TEST_F(CreateOnly, ReplacingSave_KeepsRightsOfWhatAppearsMeanwhile) {
  for (const bool isNameless : {true, false}) {
    SCOPED_TRACE(isNameless);
    hasNamelessFiles = isNameless;
    std::filesystem::remove(name_);
    AtomicFile file(name_);
    WriteText(file, "mine");
    folder_.Write("a.png", "theirs");
    ASSERT_EQ(chmod(name_.c_str(), 0600), 0);
    std::filesystem::create_hard_link(name_, folder_ / "b.png");
    file.Commit();
    EXPECT_EQ(ReadFile(name_), "mine");
    EXPECT_EQ(ModeOf(name_), mode_t{S_IFREG | 0600});
    EXPECT_THAT(file.Warnings(), ElementsAre(testing::HasSubstr("2 names")));
    std::filesystem::remove(folder_ / "b.png");
  }
}

TEST_F(CreateOnly, ReplacingSave_LeavesWhatIsNoRegularFile) {
  const std::vector<std::function<void()>> newcomers = {
      [&] { ASSERT_EQ(mkfifo(name_.c_str(), 0600), 0); },
      [&] { std::filesystem::create_directory(name_); },
      [&] { std::filesystem::create_symlink("other.png", name_); }};
  folder_.Write("other.png", "other");
  for (const auto& appear : newcomers) {
    std::filesystem::remove(name_);
    AtomicFile file(name_);
    WriteText(file, "mine");
    appear();
    const mode_t before = ModeOf(name_);
    EXPECT_THROW(file.Commit(), FileError);
    EXPECT_EQ(ModeOf(name_), before);
  }
  EXPECT_EQ(ReadFile(folder_ / "other.png"), "other");
}

TEST_F(CreateOnly, FourWriters_HaveOneWinner) {
  for (int round = 0; round < 80; ++round) {
    hasNamelessFiles = round % 2 == 0;
    std::filesystem::remove(name_);
    pid_t writers[4];
    for (pid_t& writer : writers) {
      writer = fork();
      if (writer != 0) continue;
      try {
        SaveText(name_, "by " + std::to_string(getpid()), {IfExists::fail, false});
      } catch (const FileExistsError&) {
        _exit(4);
      } catch (...) {
        _exit(5);
      }
      _exit(0);
    }
    int winners = 0, losers = 0;
    for (const pid_t writer : writers) {
      int status = 0;
      waitpid(writer, &status, 0);
      if (WEXITSTATUS(status) == 4) ++losers;
      if (status != 0) continue;
      ++winners;
      EXPECT_EQ(ReadFile(name_), "by " + std::to_string(writer));
    }
    ASSERT_EQ(winners, 1) << "round " << round;
    ASSERT_EQ(losers, 3) << "round " << round;
    ASSERT_THAT(folder_.Names(), ElementsAre("a.png"));
  }
}

}  // namespace
}  // namespace rasterkit::test
