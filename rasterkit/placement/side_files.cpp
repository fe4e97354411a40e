#include <algorithm>
#include <exception>
#include <filesystem>
#include <optional>
#include <utility>

#include <rasterkit/placement/side_file_names.h>
#include <rasterkit/placement/side_file_plan.h>
#include <rasterkit/placement/side_files.h>
#include <rasterkit/runtime/files/backup_names.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/set_aside.h>
#include <rasterkit/runtime/files/small_file.h>

namespace rasterkit {
namespace {

bool IsLink(const std::string& name) {
  std::error_code ignored;
  return std::filesystem::is_symlink(ToPath(name), ignored);
}

}  // namespace

struct SideFiles::State {
  /// A file to be written, until it has its name.
  struct Pending {
    detail::NewSideFile plan;
    std::unique_ptr<AtomicFile> file;
  };

  std::string target;
  bool syncs = true, keepsBackup = false;
  int backupNumber = 1;
  std::vector<std::string> plans, backups;
  std::vector<Pending> pending;
  struct Renamed {
    detail::SetAside file;
    bool keepsBackup = false;
  };

  std::vector<detail::OldSideFile> removed;
  std::vector<Renamed> setAside;
  /// The target before the picture has its name.
  std::optional<detail::FileIdentity> before;

  ~State() { PutBack(); }

  void Open(Pending& next) const;
  void Commit(Pending& next) const;
  std::string RealTarget() const;
  std::vector<std::string> ReplacedFiles() const;
  int FreeNumber() const;
  detail::SetAside Rename(const detail::OldSideFile& old) const;
  void PutBack() noexcept;
};

void SideFiles::State::Open(Pending& next) const {
  const IfExists ifExists = next.plan.replaces ? IfExists::replace : IfExists::fail;
  next.file = std::make_unique<AtomicFile>(next.plan.name, AtomicFileOptions{ifExists, syncs});
  const std::string& text = next.plan.text;
  next.file->Write({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  next.file->Finish();
}

void SideFiles::State::Commit(Pending& next) const {
  try {
    next.file->Commit();
  } catch (const FileExistsError&) {
    // Another save of this stem may have written the same text meanwhile.
    const auto there = detail::ReadSmallFile(next.plan.name, next.plan.text.size());
    if (!there || there->isCut || there->bytes != next.plan.text) throw;
  }
}

/// The file behind a link.
std::string SideFiles::State::RealTarget() const {
  std::error_code error;
  const auto real = std::filesystem::canonical(ToPath(target), error);
  return IsLink(target) && !error ? real.string() : target;
}

/// The old picture and what is replaced or removed beside it: their backups bear one number.
std::vector<std::string> SideFiles::State::ReplacedFiles() const {
  std::vector<std::string> names;
  if (detail::FileIdentity(target).IsRegular()) names.push_back(RealTarget());
  for (const detail::OldSideFile& old : removed) names.push_back(old.name);
  return names;
}

/// A number that no file beside an older backup has: moved back together, that file would be taken
/// for the position of this picture.
int SideFiles::State::FreeNumber() const {
  std::vector<std::string> names = ReplacedFiles();
  const auto add = [&](const std::vector<std::string>& more) {
    names.insert(names.end(), more.begin(), more.end());
  };
  const std::string real = RealTarget();
  add(detail::AllWorldFileNames(target));
  add(detail::AttachedNames(target));
  if (real != target) {
    add(detail::AllWorldFileNames(real));
    add(detail::AttachedNames(real));
  }
  return detail::FreeBackupNumber(names);
}

detail::SetAside SideFiles::State::Rename(const detail::OldSideFile& old) const {
  return keepsBackup ? detail::SetAside(old.name, syncs, backupNumber)
                     : detail::SetAside(old.name, syncs);
}

/// If the picture has its name already, the old files would be wrong beside it.
void SideFiles::State::PutBack() noexcept {
  try {
    if (setAside.empty() || !before || !(*before == detail::FileIdentity(target))) return;
    while (!setAside.empty()) {
      setAside.back().file.PutBack();
      setAside.pop_back();
    }
  } catch (...) {
    // The files keep their backup names: no position is better than a wrong one.
  }
}

SideFiles::SideFiles(const SideFileWish& wish, const Placement& placement, Changes& changes)
    : state_(std::make_unique<State>()) {
  detail::SideFilePlan plan = detail::PlanSideFiles(wish, placement, changes);
  state_->target = wish.target;
  state_->syncs = wish.syncs;
  state_->keepsBackup = wish.keepsBackup;
  for (detail::NewSideFile& file : plan.written) {
    state_->plans.push_back((file.replaces ? "replaces " : "writes ") + file.name);
    state_->pending.push_back({std::move(file), nullptr});
  }
  for (const detail::OldSideFile& old : plan.removed) {
    const auto writes = [&](const auto& next) { return next.plan.name == old.name; };
    if (old.keepsBackup) {
      state_->plans.push_back("gives a backup name to " + old.name);
    } else if (std::none_of(state_->pending.begin(), state_->pending.end(), writes)) {
      state_->plans.push_back("removes " + old.name);
    }
  }
  state_->removed = std::move(plan.removed);
}

SideFiles::~SideFiles() = default;
SideFiles::SideFiles(SideFiles&&) noexcept = default;

const std::vector<std::string>& SideFiles::Plans() const {
  return state_->plans;
}

std::vector<std::string> SideFiles::PlannedBackups() const {
  if (!state_->keepsBackup) return {};
  std::vector<std::string> names = state_->ReplacedFiles();
  const int number = state_->FreeNumber();
  for (std::string& name : names) name = detail::BackupNameOf(name, number);
  return names;
}

int SideFiles::BackupNumber() const {
  return state_->backupNumber;
}

const std::vector<std::string>& SideFiles::Backups() const {
  return state_->backups;
}

void SideFiles::Prepare() {
  for (auto& next : state_->pending) {
    // Through a link the file of another name would be written; the link itself is replaced.
    if (!IsLink(next.plan.name)) state_->Open(next);
  }
}

void SideFiles::BeforeCommit() {
  state_->before.emplace(state_->target);
  try {
    if (state_->keepsBackup) {
      state_->backupNumber = state_->FreeNumber();
    }
    for (const detail::OldSideFile& old : state_->removed) {
      const bool stays = old.keepsBackup || state_->keepsBackup;
      state_->setAside.push_back({state_->Rename(old), stays});
    }
    for (auto& next : state_->pending) {
      if (next.file == nullptr) state_->Open(next);
    }
  } catch (...) {
    state_->PutBack();
    throw;
  }
}

void SideFiles::AfterCommit() {
  State& state = *state_;
  std::exception_ptr unsynced;
  for (auto& next : state.pending) {
    try {
      state.Commit(next);
    } catch (const UnsyncedError&) {
      unsynced = std::current_exception();
    } catch (Error& error) {
      // The old files keep their backup names.
      for (const State::Renamed& old : state.setAside) {
        state.backups.push_back(old.file.BackupName());
      }
      state.setAside.clear();
      throw FileError("the picture is saved, but this file beside it is not: " + error.Reason(),
                      next.plan.name);
    }
  }
  state.pending.clear();
  for (State::Renamed& old : state.setAside) {
    if (old.keepsBackup) {
      state.backups.push_back(old.file.BackupName());
    } else {
      old.file.Remove();
    }
  }
  state.setAside.clear();
  if (unsynced) std::rethrow_exception(unsynced);
}

}  // namespace rasterkit
