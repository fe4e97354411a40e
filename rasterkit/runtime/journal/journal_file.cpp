#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/file_facts.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/small_file.h>
#include <rasterkit/runtime/journal/journal_file.h>

namespace rasterkit {
namespace {

constexpr mode_t kPrivateFile = 0600, kPrivateFolder = 0700;
constexpr size_t kMostAbandoned = 100;
constexpr char kLockEnd[] = ".lock", kTextEnd[] = ".json", kNewEnd[] = ".new";

/// Makes the folders that are missing.
void MakeFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(ToPath(folder).parent_path(), error);
  if (error) detail::ThrowSystemError("cannot be made", error.value(), folder);
  if (mkdir(folder.c_str(), kPrivateFolder) == 0 || errno == EEXIST) return;
  detail::ThrowSystemError("cannot be made", errno, folder);
}

std::string NewName() {
  static std::atomic<unsigned> count = 0;
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  return std::to_string(now) + "-" + std::to_string(getpid()) + "-" + std::to_string(++count);
}

/// A relative folder is not what the rules of such folders allow.
std::string FolderOfVariable(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value == '/' ? value : "";
}

void Remove(const std::string& fileName) noexcept {
  detail::Calls().unlinkAt(AT_FDCWD, fileName.c_str());
}

}  // namespace

std::string JournalFolder() {
  const std::string state = FolderOfVariable("XDG_STATE_HOME");
  if (!state.empty()) return state + "/rasterkit/journal";
  const std::string home = FolderOfVariable("HOME");
  return home.empty() ? "" : home + "/.local/state/rasterkit/journal";
}

/// Not open if another one holds the lock, or removed the file in between.
detail::SystemFile JournalFile::Lock(const std::string& fileName, int flags) {
  detail::SystemFile file =
      detail::OpenAt(AT_FDCWD, fileName, flags | O_RDWR | O_NOFOLLOW | O_NONBLOCK, kPrivateFile);
  if (!file.IsOpen()) return file;
  if (detail::Calls().lock(file.Handle(), LOCK_EX | LOCK_NB) != 0) return {};
  struct stat opened {};
  const FileFacts named = FactsOfFile(fileName);
  if (detail::Calls().status(file.Handle(), &opened) != 0) return {};
  const bool isNamed =
      named.exists && named.device == opened.st_dev && named.inode == opened.st_ino;
  return isNamed ? std::move(file) : detail::SystemFile();
}

JournalFile::JournalFile(std::string folder) : folder_(std::move(folder)) {
  if (folder_.empty()) throw FileError("there is no folder for journals");
  MakeFolder(folder_);
  constexpr int kMostTries = 100;
  for (int i = 0; i < kMostTries && !lock_.IsOpen(); ++i) {
    name_ = NewName();
    errno = 0;
    lock_ = Lock(folder_ + "/" + name_ + kLockEnd, O_CREAT | O_EXCL);
    if (!lock_.IsOpen() && errno != 0 && errno != EEXIST && errno != EWOULDBLOCK) break;
  }
  if (!lock_.IsOpen()) detail::ThrowSystemError("cannot be locked", errno, FileName());
}

JournalFile::~JournalFile() {
  if (!lock_.IsOpen()) return;
  const std::string start = folder_ + "/" + name_;
  Remove(start + kNewEnd);
  if (!FactsOfFile(FileName()).exists) Remove(start + kLockEnd);
}

std::vector<JournalFile> JournalFile::Abandoned(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (auto entry = std::filesystem::directory_iterator(ToPath(folder), error);
       !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    if (entry->path().extension() == kLockEnd) names.push_back(entry->path().stem().string());
  }
  // Names begin with the time.
  std::sort(names.rbegin(), names.rend());
  std::vector<JournalFile> journals;
  for (std::string& name : names) {
    detail::SystemFile lock = Lock(folder + "/" + name + kLockEnd, 0);
    if (!lock.IsOpen()) continue;
    JournalFile journal(folder, std::move(name), std::move(lock));
    if (journals.size() == kMostAbandoned) {
      journal.Clear();
    } else if (FactsOfFile(journal.FileName()).exists) {
      journals.push_back(std::move(journal));
    }
  }
  return journals;
}

std::string JournalFile::FileName() const {
  return folder_ + "/" + name_ + kTextEnd;
}

std::optional<std::string> JournalFile::Read() const {
  try {
    std::optional<detail::SmallFile> file = detail::ReadSmallFile(FileName(), kMostJournalBytes);
    if (!file || file->isCut) return std::nullopt;
    return std::move(file->bytes);
  } catch (const FileError&) {
    return std::nullopt;
  }
}

void JournalFile::Write(const std::string& bytes) {
  if (bytes.size() > kMostJournalBytes) throw FileError("the journal is too long", FileName());
  const std::string newName = folder_ + "/" + name_ + kNewEnd;
  detail::SystemFile file =
      detail::OpenAt(AT_FDCWD, newName, O_CREAT | O_TRUNC | O_WRONLY | O_NOFOLLOW, kPrivateFile);
  if (!file.IsOpen()) detail::ThrowSystemError("cannot be written", errno, newName);
  const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
  detail::WriteAll(file, std::span(data, bytes.size()), -1, newName);
  if (const int failed = file.Close(); failed != 0) {
    detail::ThrowSystemError("cannot be written", failed, newName);
  }
  // Not awaited on the disk: it is for the end of a process, and the window must not wait.
  if (detail::Calls().renameAt(AT_FDCWD, newName.c_str(), FileName().c_str(), 0) != 0) {
    detail::ThrowSystemError("cannot be written", errno, FileName());
  }
}

void JournalFile::Clear() noexcept {
  Remove(FileName());
}

}  // namespace rasterkit
