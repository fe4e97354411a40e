#include <algorithm>
#include <cerrno>
#include <map>
#include <optional>
#include <utility>

#include <fcntl.h>

#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/backup_file.h>
#include <rasterkit/runtime/files/backup_names.h>
#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/file_rights.h>
#include <rasterkit/runtime/files/file_sync.h>
#include <rasterkit/runtime/files/save_target.h>
#include <rasterkit/runtime/files/temporary_file.h>

namespace rasterkit {
namespace {

constexpr size_t kBufferSize = 128 * 1024;
constexpr mode_t kUsualMode = 0666, kPrivateMode = 0600;

/// The files of a commit that have not failed. A template, because AtomicFile::State is private.
template <typename State>
class Commitment {
 public:
  explicit Commitment(std::span<State* const> states) : states_(states), errors_(states.size()) {}

  /// Does a step for each file.
  template <typename Step>
  void ForEach(Step step) {
    for (size_t i = 0; i < states_.size(); ++i) {
      if (errors_[i]) continue;
      try {
        step(*states_[i]);
      } catch (...) {
        errors_[i] = std::current_exception();
      }
    }
  }

  void SyncData() {
    std::vector<State*> states;
    std::vector<const detail::SystemFile*> files;
    // Adding must not fail between the two.
    states.reserve(states_.size());
    files.reserve(states_.size());
    ForEach([&](State& state) {
      if (!state.options.syncs) return;
      states.push_back(&state);
      files.push_back(&state.File());
    });
    const std::vector<int> found = detail::SyncData(files);
    std::map<const State*, int> errors;
    for (size_t i = 0; i < states.size(); ++i) errors[states[i]] = found[i];
    ForEach([&](State& state) { ThrowIf(errors[&state], state); });
  }

  /// Waits until the names of the files are on the disk, or only those of backups.
  void SyncFolders(bool onlyOfBackups) {
    std::map<std::pair<dev_t, ino_t>, int> errors;
    ForEach([&](State& state) {
      if (!state.options.syncs || !state.temporary) return;
      if (onlyOfBackups && !state.backup) return;
      try {
        const auto [place, isNew] = errors.emplace(Identity(state), 0);
        if (isNew) place->second = detail::SyncFolder(state.target.folder);
        ThrowIf(place->second, state);
      } catch (const FileError& error) {
        if (onlyOfBackups) throw;
        throw UnsyncedError(
            error.Reason() + "; the new file has its name, but a power failure could undo that",
            state.name);
      }
    });
  }

  /// Backups of files that were not replaced are of no use.
  void RemoveNeedlessBackups() noexcept {
    for (size_t i = 0; i < states_.size(); ++i) {
      if (errors_[i] && states_[i]->backup) states_[i]->backup->RemoveIfNeedless();
    }
  }

  std::vector<std::exception_ptr> TakeErrors() { return std::move(errors_); }

 private:
  static void ThrowIf(int error, const State& state) {
    if (error == 0) return;
    detail::ThrowSystemError("cannot be written to the disk", error, state.name);
  }

  static std::pair<dev_t, ino_t> Identity(const State& state) {
    struct stat status {};
    if (detail::Calls().status(state.target.folder.Handle(), &status) != 0) {
      ThrowIf(errno, state);
    }
    return {status.st_dev, status.st_ino};
  }

  std::span<State* const> states_;
  std::vector<std::exception_ptr> errors_;
};

}  // namespace

struct AtomicFile::State {
  enum class Stage { open, finished, closed, failed };

  State(std::string fileName, const AtomicFileOptions& saveOptions)
      : name(std::move(fileName)), options(saveOptions) {
    Open();
  }

  const std::string name;
  const AtomicFileOptions options;
  detail::SaveTarget target;
  /// What bytes go to: one of these two.
  std::optional<detail::TemporaryFile> temporary;
  detail::SystemFile straight;
  std::vector<std::string> warnings;
  std::optional<detail::BackupFile> backup;
  int backupNumber = 1;
  Stage stage = Stage::open;

  std::vector<uint8_t> buffer;
  /// Where in the file the buffer's first byte belongs.
  uint64_t bufferStart = 0;
  uint64_t position = 0;
  uint64_t size = 0;

  [[noreturn]] void Fail(int error) const {
    detail::ThrowSystemError("cannot be written", error, name);
  }
  [[noreturn]] void FailBecauseItExists() const {
    throw FileExistsError("cannot be written: a file of this name exists", name);
  }
  const detail::SystemFile& File() const { return temporary ? temporary->File() : straight; }
  bool IsSeekable() const { return temporary.has_value(); }

  void Open();
  void OpenStraight();
  void OpenTemporary();
  detail::SystemFile OpenOld();
  void KeepRightsOfNewcomer();
  void Flush();
  void RequireStage(Stage last) const;
  template <typename Step>
  void TryOnce(Step step);
  void Finish();
  void Close();
  void Append(std::span<const uint8_t> source);
  void MakeBackup();
  void GiveName();
};

void AtomicFile::State::Open() {
  target = detail::FindTarget(name);
  if (target.kind == detail::SaveTarget::Kind::straight) return OpenStraight();
  if (target.kind == detail::SaveTarget::Kind::regular && options.ifExists == IfExists::fail) {
    FailBecauseItExists();
  }
  OpenTemporary();
}

/// The name is opened as it was given: only the system can follow a link to an open file. Such a
/// file may be regular; the bytes then go to its end.
void AtomicFile::State::OpenStraight() {
  straight = detail::OpenAt(AT_FDCWD, name, O_WRONLY | O_NOCTTY | O_APPEND);
  struct stat status {};
  if (!straight.IsOpen() || detail::Calls().status(straight.Handle(), &status) != 0) Fail(errno);
  if (S_ISDIR(status.st_mode)) Fail(EISDIR);
  if (S_ISREG(status.st_mode) && options.ifExists == IfExists::fail) FailBecauseItExists();
}

void AtomicFile::State::OpenTemporary() {
  if (target.kind == detail::SaveTarget::Kind::none) {
    temporary.emplace(target.folder, kUsualMode, name);
    return;
  }
  const detail::SystemFile old = OpenOld();
  // Until the rights of the old file are known to be set, the new one is for its owner alone.
  temporary.emplace(target.folder, kPrivateMode, name);
  warnings = detail::KeepRights(old, temporary->File(), name);
}

/// Replacing needs no right to the file itself; a file that its owner protects is refused all the
/// same.
detail::SystemFile AtomicFile::State::OpenOld() {
  if (detail::Calls().accessAt(target.folder.Handle(), target.name.c_str(), W_OK) != 0) Fail(errno);
  constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
  detail::SystemFile old = detail::OpenAt(target.folder.Handle(), target.name, O_RDONLY | kFlags);
  if (!old.IsOpen() && errno == EACCES) {
    old = detail::OpenAt(target.folder.Handle(), target.name, O_WRONLY | kFlags);
  }
  if (!old.IsOpen()) Fail(errno);
  return old;
}

/// Another program has created the file meanwhile, perhaps for its owner alone.
void AtomicFile::State::KeepRightsOfNewcomer() {
  const detail::SystemFile old = OpenOld();
  struct stat status {};
  if (detail::Calls().status(old.Handle(), &status) != 0) Fail(errno);
  if (!S_ISREG(status.st_mode)) Fail(S_ISDIR(status.st_mode) ? EISDIR : EEXIST);
  // If the file system has no modes, this fails; KeepRights checks the result.
  detail::Calls().changeMode(temporary->File().Handle(), kPrivateMode);
  warnings = detail::KeepRights(old, temporary->File(), name);
}

void AtomicFile::State::Flush() {
  if (buffer.empty()) return;
  const int64_t place = IsSeekable() ? static_cast<int64_t>(bufferStart) : -1;
  detail::WriteAll(File(), buffer, place, name);
  bufferStart += buffer.size();
  buffer.clear();
}

void AtomicFile::State::RequireStage(Stage last) const {
  if (stage == Stage::failed) throw FileError("cannot be written: writing failed before", name);
  if (stage > last) throw FileError("is written and closed already", name);
}

/// Does a step of writing. If it throws, the file cannot be committed: a second try could
/// succeed although bytes are lost.
template <typename Step>
void AtomicFile::State::TryOnce(Step step) {
  const Stage before = std::exchange(stage, Stage::failed);
  step();
  stage = before;
}

void AtomicFile::State::Finish() {
  RequireStage(Stage::finished);
  if (stage == Stage::finished) return;
  TryOnce([this] { Close(); });
  stage = Stage::finished;
}

void AtomicFile::State::Close() {
  Flush();
  buffer.shrink_to_fit();
  // File systems of networks report some errors only when a handle is closed. The other one keeps
  // the lock and the file.
  detail::SystemFile copy(detail::Calls().duplicate(File().Handle()));
  if (!copy.IsOpen()) Fail(errno);
  if (const int error = copy.Close(); error != 0) Fail(error);
}

/// A no-op if there is no old file.
void AtomicFile::State::MakeBackup() {
  if (!options.keepsBackup || backup) return;
  backup.emplace(target.folder, target.name, name,
                 detail::BackupFile::Options{backupNumber, options.syncs});
  for (const std::string& warning : backup->Warnings()) {
    // Most say of the new file what they say of the copy.
    const bool isKnown = std::find(warnings.begin(), warnings.end(), warning) != warnings.end();
    if (!isKnown) warnings.push_back(warning);
  }
}

void AtomicFile::State::GiveName() {
  if (!temporary) return;
  if (target.kind == detail::SaveTarget::Kind::none) {
    if (temporary->CreateName(target.name)) return;
    if (options.ifExists == IfExists::fail) FailBecauseItExists();
    KeepRightsOfNewcomer();
    MakeBackup();
  }
  temporary->ReplaceName(target.name);
}

void AtomicFile::State::Append(std::span<const uint8_t> source) {
  if (position != bufferStart + buffer.size()) {
    if (!IsSeekable()) throw FileError("cannot be written out of order", name);
    Flush();
    bufferStart = position;
  }
  if (buffer.size() + source.size() > kBufferSize) Flush();
  if (source.size() > kBufferSize) {
    const int64_t place = IsSeekable() ? static_cast<int64_t>(position) : -1;
    detail::WriteAll(File(), source, place, name);
    bufferStart += source.size();
  } else {
    buffer.insert(buffer.end(), source.begin(), source.end());
  }
  position += source.size();
  size = std::max(size, position);
}

AtomicFile::AtomicFile(const std::string& fileName, const AtomicFileOptions& options)
    : state_(std::make_unique<State>(fileName, options)) {}

AtomicFile::~AtomicFile() = default;

size_t AtomicFile::Read(std::span<uint8_t> target) {
  state_->RequireStage(State::Stage::open);
  if (!state_->IsSeekable()) throw FileError("cannot be read back", state_->name);
  state_->TryOnce([this] { state_->Flush(); });
  iovec piece{target.data(), target.size()};
  const size_t count = detail::ReadPieces(state_->File(), {&piece, 1},
                                          static_cast<int64_t>(state_->position), state_->name);
  state_->position += count;
  return count;
}

void AtomicFile::Write(std::span<const uint8_t> source) {
  state_->RequireStage(State::Stage::open);
  state_->TryOnce([&] { state_->Append(source); });
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

bool AtomicFile::IsSeekable() const {
  return state_->IsSeekable();
}

bool IsSeekable(const TStream& stream) {
  const auto* file = dynamic_cast<const AtomicFile*>(&stream);
  return file == nullptr || file->IsSeekable();
}

const std::string& AtomicFile::FileName() const {
  return state_->name;
}

const std::vector<std::string>& AtomicFile::Warnings() const {
  return state_->warnings;
}

void AtomicFile::SetBackupNumber(int number) {
  state_->backupNumber = number;
}

std::string AtomicFile::BackupName() const {
  const int number = state_->backup ? state_->backup->Number() : 0;
  return number == 0 ? "" : detail::BackupNameOf(state_->target.path, number);
}

const std::string& AtomicFile::TargetName() const {
  return state_->target.path;
}

void AtomicFile::Finish() {
  state_->Finish();
}

void AtomicFile::Commit() {
  State* const state = state_.get();
  if (const std::exception_ptr error = CommitStates({&state, 1}).front()) {
    std::rethrow_exception(error);
  }
}

std::vector<std::exception_ptr> AtomicFile::CommitAll(
    std::span<const std::unique_ptr<AtomicFile>> files) {
  std::vector<State*> states;
  for (const auto& file : files) states.push_back(file->state_.get());
  return CommitStates(states);
}

std::vector<std::exception_ptr> AtomicFile::CommitStates(std::span<State* const> states) {
  Commitment<State> commitment(states);
  commitment.ForEach([](State& state) {
    state.Finish();
    state.stage = State::Stage::closed;
  });
  commitment.SyncData();
  commitment.ForEach([](State& state) {
    if (state.target.kind == detail::SaveTarget::Kind::regular) state.MakeBackup();
  });
  // A power failure must not undo a backup alone.
  commitment.SyncFolders(true);
  commitment.ForEach([](State& state) { state.GiveName(); });
  commitment.SyncFolders(false);
  commitment.RemoveNeedlessBackups();
  return commitment.TakeErrors();
}

}  // namespace rasterkit
