// Each system call of a save with files beside it fails once, with each error.

#include <filesystem>
#include <iostream>
#include <optional>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <unistd.h>

#include <rasterkit/placement/placement.h>
#include <rasterkit/placement/side_files.h>
#include <rasterkit/runtime/errors.h>

#include "tests/runtime/files/replaced_calls.h"
#include "tests/support/environment.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using detail::Calls;

const Affine kOld{1, 0, 0, -1, 5, 6}, kNew{2, 0, 0, -2, 1000, 2000};
constexpr int kErrors[] = {EIO, ENOSPC, EACCES};

/// What lies in the folder before, and what is wished.
struct Scenario {
  const char* name;
  std::vector<std::string> worldFiles;
  bool replaces, writesWorldFile;
  bool hasAttached = false;
  bool syncs = false;
  /// As file systems without a rename that spares what is there.
  bool isPlain = false;
  bool keepsBackup = false;
  /// Backups that are there before.
  std::vector<std::string> backups = {};
  /// As file systems without links.
  bool hasNoLinks = false;
};

const Scenario kScenarios[] = {
    {"new", {}, false, true},
    {"new, synced", {}, false, true, false, true},
    {"replaced", {"a.pgw"}, true, true},
    {"replaced, synced", {"a.pgw"}, true, true, true, true},
    {"replaced, several", {"a.pgw", "a.PNGW", "a.wld"}, true, true, true},
    {"removed", {"a.pgw", "a.wld"}, true, false, true},
    {"world file of no picture", {"a.pgw"}, false, true},
    {"replaced, plain file system", {"a.pgw", "a.wld"}, true, true, true, false, true},
    {"backups", {"a.pgw"}, true, true, false, true, false, true},
    {"backups, not synced", {"a.pgw"}, true, true, true, false, false, true},
    {"backups of several", {"a.pgw", "a.PNGW", "a.wld"}, true, true, true, true, false, true},
    {"backup of a removed one", {"a.pgw"}, true, false, true, true, false, true},
    {"backups beside others",
     {"a.pgw"},
     true,
     true,
     false,
     true,
     false,
     true,
     {"a.png~", "a.pgw~2"}},
    {"backups, plain file system", {"a.pgw"}, true, true, true, true, true, true},
    {"copied backups", {"a.pgw"}, true, true, true, true, false, true, {"a.png~"}, true},
    {"copied backups, plain file system", {"a.pgw"}, true, true, true, true, true, true, {}, true},
};

void HaveFastDisk() {
  const auto sync = [](int) { return 0; };
  Calls().syncData = Calls().syncAll = Calls().syncFileSystem = Calls().awaitWrites = sync;
  Calls().statusOfFileSystem = [](int, struct statfs* status) {
    status->f_type = EXT4_SUPER_MAGIC;
    return 0;
  };
}

void HaveNoCarefulRename() {
  static auto rename = Calls().renameAt;
  rename = Calls().renameAt;
  Calls().renameAt = [](int folder, const char* oldName, const char* name, unsigned flags) {
    if (flags == 0) return rename(folder, oldName, name, flags);
    errno = EINVAL;
    return -1;
  };
}

void HaveNoLinks() {
  static auto open = Calls().openAt;
  open = Calls().openAt;
  Calls().openAt = [](int folder, const char* name, int flags, mode_t mode) {
    constexpr int kNameless = O_TMPFILE & ~O_DIRECTORY;
    if ((flags & kNameless) == 0) return open(folder, name, flags, mode);
    errno = EOPNOTSUPP;
    return -1;
  };
  Calls().linkAt = [](int, const char*, int, const char*, int) {
    errno = EPERM;
    return -1;
  };
}

class Stage {
 public:
  explicit Stage(const Scenario& scenario) : scenario_(scenario) {
    if (scenario.replaces) folder_.Write("a.png", "old");
    for (const std::string& name : scenario.worldFiles) folder_.Write(name, WorldFileText(kOld));
    if (scenario.hasAttached) folder_.Write("a.png.aux.xml", "<PAMDataset/>");
    for (const std::string& name : scenario.backups) folder_.Write(name, "older");
  }

  /// Returns the error.
  std::string Save() const {
    try {
      SideFileWish wish;
      wish.target = folder_ / "a.png";
      wish.mayReplace = true;
      wish.writesWorldFile = scenario_.writesWorldFile;
      wish.hasTags = !scenario_.writesWorldFile;
      wish.width = wish.height = 10;
      wish.syncs = scenario_.syncs;
      wish.keepsBackup = scenario_.keepsBackup;
      Placement placement;
      placement.affine = kNew;
      Changes changes;
      AtomicFile picture(wish.target, {IfExists::replace, scenario_.syncs, scenario_.keepsBackup});
      SideFiles files(wish, placement, changes);
      picture.Write(std::vector<uint8_t>{'n', 'e', 'w'});
      files.Prepare();
      files.BeforeCommit();
      picture.SetBackupNumber(files.BackupNumber());
      picture.Commit();
      files.AfterCommit();
    } catch (const Error& error) {
      return error.what();
    }
    return "";
  }

  void Check(const std::string& error) const {
    const std::string picture = ReadFile(folder_ / "a.png");
    EXPECT_TRUE(picture == "new" || picture == (scenario_.replaces ? "old" : "")) << picture;
    if (error.empty()) {
      EXPECT_EQ(picture, "new");
    }
    const Affine& right = picture == "new" ? kNew : kOld;
    const Placement found = ReadPlacement(folder_ / "a.png", {}, 10, 10);
    if (picture == "new" || scenario_.replaces) {
      for (const StatedPosition& position : found.stated) {
        EXPECT_EQ(position.affine, right) << position.file << ": " << error;
      }
      if (picture == "new") {
        EXPECT_FALSE(std::filesystem::exists(folder_ / "a.png.aux.xml")) << error;
      }
    }
    if (error.empty() && scenario_.writesWorldFile) {
      EXPECT_TRUE(found.affine);
    }
    CheckBackups(picture, error);
  }

  /// What was there is whole, under its name or that of a backup, and nothing was replaced.
  void CheckBackups(const std::string& picture, const std::string& error) const {
    for (const std::string& name : scenario_.backups) {
      EXPECT_EQ(ReadFile(folder_ / name), "older") << name << ": " << error;
    }
    if (!scenario_.keepsBackup) return;
    std::vector<std::string> old = scenario_.worldFiles;
    if (scenario_.hasAttached) old.push_back("a.png.aux.xml");
    for (const std::string& name : old) {
      const std::string text = name.ends_with("xml") ? "<PAMDataset/>" : WorldFileText(kOld);
      EXPECT_TRUE(ReadFile(folder_ / name) == text || HasBackup(name, text)) << name << error;
    }
    EXPECT_EQ(HasBackup("a.png", "old"), picture == "new") << error;
    if (!error.empty()) return;
    const std::string number = BackupNumberOf("a.png", "old");
    for (const std::string& name : old) {
      const std::string text = name.ends_with("xml") ? "<PAMDataset/>" : WorldFileText(kOld);
      EXPECT_EQ(BackupNumberOf(name, text), number) << name;
    }
  }

  /// Files of the old picture that have their names.
  size_t OldNames() const {
    size_t count = 0;
    for (const std::string& name : folder_.Names()) {
      count += name.ends_with(".bak") || name.find('~') != std::string::npos ? 0 : 1;
    }
    return count;
  }
  bool HoldsOldPicture() const { return ReadFile(folder_ / "a.png") == "old"; }

 private:
  /// What follows the "~" of the backup that holds the text; "none" without one.
  std::string BackupNumberOf(const std::string& name, const std::string& text) const {
    for (const std::string& other : folder_.Names()) {
      if (!other.starts_with(name + "~") || ReadFile(folder_ / other) != text) continue;
      return other.substr(name.size() + 1);
    }
    return "none";
  }
  bool HasBackup(const std::string& name, const std::string& text) const {
    return BackupNumberOf(name, text) != "none";
  }

  const Scenario& scenario_;
  TempFolder folder_;
};

TEST(SideFileFaults, NeverLeaveAPictureWithAWrongWorldFile) {
  std::optional<Environment> memory;
  if (access("/dev/shm", W_OK) == 0) memory.emplace("TMPDIR", "/dev/shm");
  int faults = 0, errors = 0, restored = 0;
  for (const Scenario& scenario : kScenarios) {
    SCOPED_TRACE(scenario.name);
    const CallsGuard guard;
    HaveFastDisk();
    if (scenario.isPlain) HaveNoCarefulRename();
    if (scenario.hasNoLinks) HaveNoLinks();
    int calls = 0;
    size_t names = 0;
    {
      const Stage stage(scenario);
      names = stage.OldNames();
      const CountedCalls counted;
      EXPECT_EQ(stage.Save(), "");
      calls = CountedCalls::Count();
      stage.Check("");
    }
    for (int number = 1; number <= calls; ++number) {
      for (const int error : kErrors) {
        SCOPED_TRACE("call " + std::to_string(number) + " error " + std::to_string(error));
        const Stage stage(scenario);
        std::string result;
        {
          CountedCalls counted;
          counted.FailAt(number, error);
          result = stage.Save();
          EXPECT_TRUE(CountedCalls::HasFailed());
        }
        stage.Check(result);
        if (stage.HoldsOldPicture()) {
          EXPECT_EQ(stage.OldNames(), names) << "the old files are back: " << result;
          ++restored;
        }
        ++faults;
        errors += result.empty() ? 0 : 1;
        if (testing::Test::HasFailure()) return;
      }
    }
  }
  std::cout << faults << " faults, " << errors << " reported as errors, " << restored
            << " times the old picture\n";
  EXPECT_GT(faults, 3000);
  EXPECT_GT(errors, 1500);
  EXPECT_GT(restored, 1000);
}

}  // namespace
}  // namespace rasterkit::test
