#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit {
namespace {

constexpr size_t kBufferSize = 128 * 1024;

/// Follows symbolic links to the name that a write would reach, whether that exists or not.
std::filesystem::path FollowLinks(std::filesystem::path path, const std::string& name) {
  std::error_code ignored;
  for (int links = 0; std::filesystem::is_symlink(path, ignored); ++links) {
    if (links == 40) detail::ThrowSystemError("cannot be written", ELOOP, name);
    path = path.parent_path() / std::filesystem::read_symlink(path, ignored);
  }
  return path;
}

/// A short name that no other writer of this machine uses at this moment.
std::string TemporaryName() {
  static std::atomic<unsigned> count{0};
  return ".rk" + std::to_string(getpid()) + "-" + std::to_string(count++) + ".tmp";
}

std::string PathOfHandle(const detail::SystemFile& file) {
  return "/proc/self/fd/" + std::to_string(file.Handle());
}

}  // namespace

struct AtomicFile::State {
  std::string name;
  /// What bytes go to: the file beside the target, or the target itself when that is no regular
  /// file.
  detail::SystemFile file;
  detail::SystemFile folder;
  std::string targetName;
  /// The name of the file beside the target; empty while it has none yet, while the target is
  /// written straight, and after a commit.
  std::string temporaryName;
  bool isNameless = false;
  bool replaces = false;
  bool isSeekable = true;

  std::vector<uint8_t> buffer;
  /// Where in the file the buffer's first byte belongs.
  uint64_t bufferStart = 0;
  uint64_t position = 0;
  uint64_t size = 0;

  ~State() { RemoveTemporary(); }

  [[noreturn]] void Fail() const { detail::ThrowSystemError("cannot be written", errno, name); }
  void Open();
  void OpenStraight(const std::filesystem::path& target);
  void OpenTemporary(const struct stat* old);
  bool OpenNameless();
  void OpenNamed();
  void NameTheNameless();
  void CopyMode(const struct stat& old);
  void RemoveTemporary();
  void Flush();
  void RequireOpen() const;
};

void AtomicFile::State::Open() {
  const std::filesystem::path target = FollowLinks(ToPath(name), name);
  targetName = target.filename().string();
  if (name.find('\0') != std::string::npos || targetName.empty()) {
    detail::ThrowSystemError("cannot be written", EINVAL, name);
  }
  struct stat old {};
  const bool exists = stat(target.c_str(), &old) == 0;
  if (exists && S_ISDIR(old.st_mode)) detail::ThrowSystemError("cannot be written", EISDIR, name);
  if (exists && !S_ISREG(old.st_mode)) return OpenStraight(target);
  // Replacing needs no right to the file itself; a file that its owner protects is refused all the
  // same.
  if (exists && access(target.c_str(), W_OK) != 0) Fail();
  const std::string place = target.has_parent_path() ? target.parent_path().string() : ".";
  folder = detail::OpenAt(AT_FDCWD, place, O_PATH | O_DIRECTORY);
  if (!folder.IsOpen()) Fail();
  OpenTemporary(exists ? &old : nullptr);
}

void AtomicFile::State::OpenStraight(const std::filesystem::path& target) {
  file = detail::OpenAt(AT_FDCWD, target.string(), O_WRONLY | O_NOCTTY);
  if (!file.IsOpen()) Fail();
  isSeekable = false;
}

void AtomicFile::State::OpenTemporary(const struct stat* old) {
  if (!OpenNameless()) OpenNamed();
  replaces = old != nullptr;
  if (replaces) CopyMode(*old);
}

/// A file without a name vanishes by itself even when the process is killed. Not every file system
/// has such files.
bool AtomicFile::State::OpenNameless() {
  file = detail::OpenAt(folder.Handle(), ".", O_RDWR | O_TMPFILE, 0666);
  if (!file.IsOpen()) return false;
  isNameless = access(PathOfHandle(file).c_str(), F_OK) == 0;
  return isNameless;
}

void AtomicFile::State::OpenNamed() {
  do {
    temporaryName = TemporaryName();
    file = detail::OpenAt(folder.Handle(), temporaryName, O_RDWR | O_CREAT | O_EXCL, 0666);
  } while (!file.IsOpen() && errno == EEXIST);
  if (!file.IsOpen()) {
    temporaryName.clear();
    Fail();
  }
}

/// The system can link only to a free name, so the file gets one for the moment before it is
/// renamed.
void AtomicFile::State::NameTheNameless() {
  const std::string source = PathOfHandle(file);
  std::string name;
  int result = 0;
  do {
    name = TemporaryName();
    result = linkat(AT_FDCWD, source.c_str(), folder.Handle(), name.c_str(), AT_SYMLINK_FOLLOW);
  } while (result != 0 && errno == EEXIST);
  if (result != 0) Fail();
  temporaryName = name;
  isNameless = false;
}

void AtomicFile::State::CopyMode(const struct stat& old) {
  // Only a privileged process can give a file away; for others it becomes their own, as with a
  // copy.
  [[maybe_unused]] const int ignored = fchown(file.Handle(), old.st_uid, old.st_gid);
  if (fchmod(file.Handle(), old.st_mode & 07777) != 0) Fail();
}

void AtomicFile::State::RemoveTemporary() {
  if (!temporaryName.empty()) unlinkat(folder.Handle(), temporaryName.c_str(), 0);
  temporaryName.clear();
}

void AtomicFile::State::Flush() {
  if (buffer.empty()) return;
  const int64_t place = isSeekable ? static_cast<int64_t>(bufferStart) : -1;
  detail::WriteAll(file, buffer, place, name);
  bufferStart += buffer.size();
  buffer.clear();
}

void AtomicFile::State::RequireOpen() const {
  if (!file.IsOpen()) throw FileError("is written and closed already", name);
}

AtomicFile::AtomicFile(const std::string& fileName) : state_(std::make_unique<State>()) {
  state_->name = fileName;
  state_->Open();
}

AtomicFile::~AtomicFile() = default;

size_t AtomicFile::Read(std::span<uint8_t> target) {
  state_->RequireOpen();
  if (!state_->isSeekable) throw FileError("cannot be read back", state_->name);
  state_->Flush();
  iovec piece{target.data(), target.size()};
  const size_t count = detail::ReadPieces(state_->file, {&piece, 1},
                                          static_cast<int64_t>(state_->position), state_->name);
  state_->position += count;
  return count;
}

void AtomicFile::Write(std::span<const uint8_t> source) {
  State& state = *state_;
  state.RequireOpen();
  if (state.position != state.bufferStart + state.buffer.size()) {
    if (!state.isSeekable) throw FileError("cannot be written out of order", state.name);
    state.Flush();
    state.bufferStart = state.position;
  }
  if (state.buffer.size() + source.size() > kBufferSize) state.Flush();
  if (source.size() > kBufferSize) {
    const int64_t place = state.isSeekable ? static_cast<int64_t>(state.position) : -1;
    detail::WriteAll(state.file, source, place, state.name);
    state.bufferStart += source.size();
  } else {
    state.buffer.insert(state.buffer.end(), source.begin(), source.end());
  }
  state.position += source.size();
  state.size = std::max(state.size, state.position);
}

uint64_t AtomicFile::Position() const {
  return state_->position;
}

void AtomicFile::SetPosition(uint64_t position) {
  state_->position = position;
}

uint64_t AtomicFile::Size() const {
  return state_->size;
}

void AtomicFile::Commit() {
  State& state = *state_;
  state.RequireOpen();
  state.Flush();
  // The name must not lead to the new file before its bytes are safe, else a power failure loses
  // old and new.
  if (state.replaces && fdatasync(state.file.Handle()) != 0) state.Fail();
  if (state.isNameless) state.NameTheNameless();
  if (const int error = state.file.Close(); error != 0) {
    detail::ThrowSystemError("cannot be written", error, state.name);
  }
  if (state.temporaryName.empty()) return;
  const int folder = state.folder.Handle();
  if (renameat(folder, state.temporaryName.c_str(), folder, state.targetName.c_str()) != 0) {
    state.Fail();
  }
  state.temporaryName.clear();
}

}  // namespace rasterkit
