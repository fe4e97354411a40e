// Each system call of each kind of save fails once, with each error.

#include <filesystem>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/backup_names.h>
#include <rasterkit/runtime/files/system_file.h>

#include "tests/runtime/files/access_lists.h"
#include "tests/runtime/files/replaced_calls.h"
#include "tests/support/environment.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

using detail::Calls;

constexpr int kErrors[] = {EIO, ENOSPC, EACCES, EMFILE};
/// More than one buffer.
constexpr size_t kBytes = 150'000;

const std::string& NewContent() {
  static const std::string content(kBytes, 'n');
  return content;
}

/// One kind of save. The folder is empty at first.
struct Scenario {
  std::string name;
  AtomicFileOptions options = {};
  /// What lies in the folder before, besides the old file.
  std::function<void(const TempFolder&)> prepare = [](const TempFolder&) {};
  bool replaces = false;
  /// The name that the save is given.
  std::string link = "a.png";
  /// As a file system that does not have some of the calls.
  std::function<void()> limit = [] {};
  size_t files = 1;
  /// Backups that are there before the save; see AtomicFileOptions::keepsBackup.
  int backups = 0;
};

void HaveNoNamelessFiles() {
  static auto open = Calls().openAt;
  open = Calls().openAt;
  Calls().openAt = [](int folder, const char* name, int flags, mode_t mode) {
    constexpr int kNameless = O_TMPFILE & ~O_DIRECTORY;
    if ((flags & kNameless) == 0) return open(folder, name, flags, mode);
    errno = EOPNOTSUPP;
    return -1;
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
  Calls().linkAt = [](int, const char*, int, const char*, int) {
    errno = EPERM;
    return -1;
  };
}

/// The disk itself would need minutes for thousands of saves.
void HaveFastDisk() {
  const auto sync = [](int) { return 0; };
  Calls().syncData = Calls().syncAll = Calls().syncFileSystem = Calls().awaitWrites = sync;
  Calls().statusOfFileSystem = [](int, struct statfs* status) {
    status->f_type = EXT4_SUPER_MAGIC;
    return 0;
  };
}

std::vector<Scenario> Scenarios() {
  const AtomicFileOptions create{IfExists::fail, true};
  const AtomicFileOptions backup{IfExists::replace, true, true};
  const auto named = [] { HaveNoNamelessFiles(); };
  const auto withoutLinks = [] {
    HaveNoNamelessFiles();
    HaveNoLinks();
  };
  const auto nfs = [] {
    HaveNoNamelessFiles();
    HaveNoCarefulRename();
  };
  const auto plain = [] {
    HaveNoNamelessFiles();
    HaveNoCarefulRename();
    HaveNoLinks();
  };
  const auto none = [](const TempFolder&) {};
  const auto withList = [](const TempFolder& folder) {
    const std::string name = folder / "a.png";
    SetList(name, kListAttribute,
            {{kUserOwner, 6, kNoId},
             {kUser, 4, 4711},
             {kGroupOwner, 4, kNoId},
             {kMask, 6, kNoId},
             {kOther, 0, kNoId}});
    setxattr(name.c_str(), "user.note", "text", 4, 0);
    setxattr(name.c_str(), "user.more", "texts", 5, 0);
  };
  const auto inFolderWithList = [](const TempFolder& folder) {
    SetList(folder.Path(), "system.posix_acl_default",
            {{kUserOwner, 7, kNoId},
             {kUser, 6, 4711},
             {kGroupOwner, 5, kNoId},
             {kMask, 7, kNoId},
             {kOther, 0, kNoId}});
  };
  const auto linked = [](const TempFolder& folder) {
    std::filesystem::create_symlink("a.png", folder / "link1");
    std::filesystem::create_symlink(folder / "link1", folder / "link2");
  };
  const auto secondName = [](const TempFolder& folder) {
    std::filesystem::create_hard_link(folder / "a.png", folder / "b.png");
  };
  return {
      {"new"},
      {"new, must not exist", create},
      {"replaced", {}, none, true},
      {"replaced, list and attributes", {}, withList, true},
      {"replaced, folder with a list", {}, inFolderWithList, true},
      {"replaced through links", {}, linked, true, "link2"},
      {"new through links", create, linked, false, "link2"},
      {"replaced, two names", {}, secondName, true},
      {"replaced, without sync", {IfExists::replace, false}, none, true},
      {"new, without sync", {IfExists::fail, false}},
      {"new, named", {}, none, false, "a.png", named},
      {"new, named, must not exist", create, none, false, "a.png", named},
      {"replaced, named", {}, none, true, "a.png", named},
      {"replaced, named, list and attributes", {}, withList, true, "a.png", named},
      {"new as on NFS", create, none, false, "a.png", nfs},
      {"new, without links", create, none, false, "a.png", plain},
      {"three new", create, none, false, "a.png", [] {}, 3},
      {"nine replaced", {}, none, true, "a.png", [] {}, 9},
      {"backup", backup, none, true},
      {"backup, without sync", {IfExists::replace, false, true}, none, true},
      {"backup beside others", backup, none, true, "a.png", [] {}, 1, 2},
      {"backup through links", backup, linked, true, "link2"},
      {"backup, list and attributes", backup, withList, true},
      {"backup, two names", backup, secondName, true},
      {"backup as on NFS", backup, none, true, "a.png", nfs},
      {"copied backup", backup, none, true, "a.png", withoutLinks},
      {"copied backup, without sync",
       {IfExists::replace, false, true},
       none,
       true,
       "a.png",
       withoutLinks},
      {"copied backup beside others", backup, none, true, "a.png", withoutLinks, 1, 2},
      {"copied backup, list and attributes", backup, withList, true, "a.png", withoutLinks},
      {"copied backup, plain file system", backup, none, true, "a.png", plain},
      {"three backups", backup, none, true, "a.png", [] {}, 3},
  };
}

std::string FileNumber(size_t number, const std::string& first) {
  return number == 0 ? first : "file" + std::to_string(number) + ".png";
}

size_t OpenHandles() {
  const std::filesystem::directory_iterator begin("/proc/self/fd"), end;
  return static_cast<size_t>(std::distance(begin, end));
}

/// A folder as a scenario needs it.
class Stage {
 public:
  explicit Stage(const Scenario& scenario) : scenario_(scenario) {
    for (size_t i = 0; i < scenario.files; ++i) {
      if (scenario.replaces) folder_.Write(FileNumber(i, "a.png"), "old");
      for (int number = 1; number <= scenario.backups; ++number) {
        folder_.Write(detail::BackupNameOf(FileNumber(i, "a.png"), number), "older");
      }
      names_.push_back(folder_ / FileNumber(i, scenario.link));
    }
    scenario.prepare(folder_);
    before_ = folder_.Names();
  }

  /// Saves all files; returns their errors.
  std::vector<std::exception_ptr> Save() {
    std::vector<std::unique_ptr<AtomicFile>> files;
    std::vector<std::exception_ptr> errors(names_.size());
    std::vector<size_t> numbers;
    for (size_t i = 0; i < names_.size(); ++i) {
      try {
        auto file = std::make_unique<AtomicFile>(names_[i], scenario_.options);
        WriteOrFail(*file);
        files.push_back(std::move(file));
        numbers.push_back(i);
      } catch (...) {
        errors[i] = std::current_exception();
      }
    }
    const std::vector<std::exception_ptr> committed = AtomicFile::CommitAll(files);
    for (size_t i = 0; i < numbers.size(); ++i) errors[numbers[i]] = committed[i];
    return errors;
  }

  /// Checks the folder after a save in which a call may have failed.
  void Check(const std::vector<std::exception_ptr>& errors, bool failedInTheEnd) const {
    std::vector<std::string> expected = before_;
    for (size_t i = 0; i < names_.size(); ++i) {
      const std::string target = FileNumber(i, "a.png");
      const std::string content = ReadFile(folder_ / target);
      const bool exists = std::filesystem::exists(folder_ / target);
      if (errors[i]) {
        CheckNamed(errors[i], names_[i]);
        const bool isUntouched = scenario_.replaces ? content == "old" : !exists;
        EXPECT_TRUE(isUntouched || (failedInTheEnd && content == NewContent())) << target;
      } else {
        EXPECT_TRUE(content == NewContent()) << target;
      }
      if (exists && !scenario_.replaces) expected.push_back(target);
      CheckBackups(target, content, expected);
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(folder_.Names(), expected) << "no leftovers";
  }

 private:
  static void WriteOrFail(AtomicFile& file) {
    const std::string& text = NewContent();
    try {
      for (int part = 0; part < 3; ++part) {
        file.Write({reinterpret_cast<const uint8_t*>(text.data()), text.size() / 3});
      }
    } catch (const FileError&) {
      EXPECT_THROW(file.Commit(), FileError) << "bytes are lost";
      throw;
    }
  }

  /// A new file has a backup of the old one, which is whole; older backups stay.
  void CheckBackups(const std::string& target, const std::string& content,
                    std::vector<std::string>& expected) const {
    for (int number = 1; number <= scenario_.backups; ++number) {
      EXPECT_EQ(ReadFile(folder_ / detail::BackupNameOf(target, number)), "older");
    }
    if (!scenario_.options.keepsBackup) return;
    const std::string backup = detail::BackupNameOf(target, scenario_.backups + 1);
    const bool isKept = std::filesystem::exists(folder_ / backup);
    if (isKept) {
      EXPECT_EQ(ReadFile(folder_ / backup), "old");
      expected.push_back(backup);
    }
    // Beside an old file no backup stays, as only one call fails.
    EXPECT_EQ(isKept, content == NewContent()) << target;
  }

  static void CheckNamed(const std::exception_ptr& error, const std::string& name) {
    try {
      std::rethrow_exception(error);
    } catch (const FileError& reason) {
      EXPECT_EQ(reason.File(), name);
      EXPECT_THAT(reason.Reason(), testing::StartsWith("cannot be written"));
    } catch (...) {
      ADD_FAILURE() << "no FileError";
    }
  }

  const Scenario& scenario_;
  const TempFolder folder_;
  std::vector<std::string> names_, before_;
};

TEST(SaveFaults, EachFailingCall_LeavesOldOrNewFileAndNothingElse) {
  // Thousands of folders; memory is faster than a busy disk.
  std::optional<Environment> memory;
  if (access("/dev/shm", W_OK) == 0) memory.emplace("TMPDIR", "/dev/shm");
  int faults = 0, errors = 0;
  for (const Scenario& scenario : Scenarios()) {
    SCOPED_TRACE(scenario.name);
    const CallsGuard guard;
    HaveFastDisk();
    scenario.limit();
    int calls = 0;
    {
      Stage stage(scenario);
      const CountedCalls counted;
      const auto result = stage.Save();
      calls = CountedCalls::Count();
      stage.Check(result, false);
      for (const auto& error : result) EXPECT_FALSE(error) << "without a fault";
    }
    for (int number = 1; number <= calls; ++number) {
      for (const int error : kErrors) {
        SCOPED_TRACE("call " + std::to_string(number) + " error " + std::to_string(error));
        Stage stage(scenario);
        const size_t handles = OpenHandles();
        std::vector<std::exception_ptr> result;
        {
          CountedCalls counted;
          counted.FailAt(number, error);
          result = stage.Save();
          EXPECT_TRUE(CountedCalls::HasFailed());
        }
        stage.Check(result, CountedCalls::FailedInTheEnd());
        EXPECT_EQ(OpenHandles(), handles);
        ++faults;
        for (const auto& reason : result) errors += reason ? 1 : 0;
        if (testing::Test::HasFailure()) return;
      }
    }
  }
  std::cout << faults << " faults, " << errors << " reported as errors\n";
  EXPECT_GT(faults, 5000);
}

int writesToFail = 0;

/// From now on, so many writes fail; later ones succeed.
void LetWritesFail(int count) {
  static detail::FileCalls base;
  base = Calls();
  writesToFail = count;
  Calls().write = [](int handle, const void* bytes, size_t size) -> ssize_t {
    if (writesToFail-- <= 0) return base.write(handle, bytes, size);
    errno = EIO;
    return -1;
  };
  Calls().writeAt = [](int handle, const void* bytes, size_t size, off_t at) -> ssize_t {
    if (writesToFail-- <= 0) return base.writeAt(handle, bytes, size, at);
    errno = EIO;
    return -1;
  };
}

TEST(SaveFaults, WriteThatFails_EndsTheFile) {
  const CallsGuard guard;
  const TempFolder folder;
  // The buffer is written first, or the bytes go past it.
  for (const size_t size : {NewContent().size() / 2, NewContent().size()}) {
    SCOPED_TRACE(size);
    folder.Write("a.png", "old");
    AtomicFile file(folder / "a.png");
    const std::vector<uint8_t> bytes(size, 'n');
    if (size < NewContent().size()) file.Write(bytes);
    LetWritesFail(1);
    EXPECT_THROW(file.Write(bytes), FileError);
    EXPECT_THROW(file.Write(bytes), FileError);
    EXPECT_THROW(file.Finish(), FileError);
    EXPECT_THROW(file.Commit(), FileError);
    EXPECT_EQ(ReadFile(folder / "a.png"), "old");
  }
}

TEST(SaveFaults, ReadThatCannotWriteTheBuffer_EndsTheFile) {
  const CallsGuard guard;
  const TempFolder folder;
  AtomicFile file(folder / "a.png");
  std::vector<uint8_t> bytes(10, 'n');
  file.Write(bytes);
  LetWritesFail(1);
  EXPECT_THROW(file.Read(bytes), FileError);
  EXPECT_THROW(file.Commit(), FileError);
  EXPECT_TRUE(folder.Names().empty());
}

TEST(SaveFaults, PipeWhoseWriteFails_GetsNothingAgain) {
  const CallsGuard guard;
  const TempFolder folder;
  const std::string name = folder / "pipe";
  ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
  const detail::SystemFile reader(open(name.c_str(), O_RDONLY | O_NONBLOCK));
  AtomicFile file(name);
  const std::vector<uint8_t> bytes(10, 'n');
  file.Write(bytes);
  LetWritesFail(1);
  EXPECT_THROW(file.Write(std::vector<uint8_t>(NewContent().size())), FileError);
  EXPECT_THROW(file.Commit(), FileError);
  char letter = 0;
  EXPECT_NE(read(reader.Handle(), &letter, 1), 1) << "nothing is in the pipe";
}

}  // namespace
}  // namespace rasterkit::test
