#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

#include <rasterkit/placement/side_file_plan.h>
#include <rasterkit/placement/side_files.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/set_aside.h>
#include <rasterkit/runtime/files/small_file.h>

namespace rasterkit {

struct SideFiles::State {
  /// A file to be written, until it has its name.
  struct Pending {
    detail::NewSideFile plan;
    std::unique_ptr<AtomicFile> file;
  };

  std::string target;
  bool syncs = true;
  std::vector<std::string> plans;
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
  void PutBack() noexcept;
};

namespace {

bool IsLink(const std::string& name) {
  std::error_code ignored;
  return std::filesystem::is_symlink(ToPath(name), ignored);
}

}  // namespace

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

void SideFiles::Prepare() {
  for (auto& next : state_->pending) {
    // Through a link the file of another name would be written; the link itself is replaced.
    if (!IsLink(next.plan.name)) state_->Open(next);
  }
}

void SideFiles::BeforeCommit() {
  state_->before.emplace(state_->target);
  try {
    for (const detail::OldSideFile& old : state_->removed) {
      state_->setAside.push_back({detail::SetAside(old.name, state_->syncs), old.keepsBackup});
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
  for (auto& next : state.pending) {
    try {
      state.Commit(next);
    } catch (Error& error) {
      // The old files keep their backup names.
      state.setAside.clear();
      throw FileError("the picture is saved, but this file beside it is not: " + error.Reason(),
                      next.plan.name);
    }
  }
  state.pending.clear();
  for (State::Renamed& old : state.setAside) {
    if (!old.keepsBackup) old.file.Remove();
  }
  state.setAside.clear();
}

}  // namespace rasterkit
