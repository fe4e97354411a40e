#include <filesystem>
#include <optional>
#include <utility>

#include <rasterkit/pictures/fitting/make_thumbnail.h>
#include <rasterkit/pictures/pending_save.h>
#include <rasterkit/pictures/picture_parts.h>
#include <rasterkit/pictures/read_pixels.h>
#include <rasterkit/pictures/run_scope.h>
#include <rasterkit/pictures/save_pages.h>
#include <rasterkit/pictures/save_picture.h>
#include <rasterkit/pictures/side_file_losses.h>
#include <rasterkit/pictures/write_plan.h>
#include <rasterkit/placement/side_files.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit {

struct PendingSave::State {
  rasterkit::Report report;
  std::unique_ptr<AtomicFile> file;
  std::optional<SideFiles> sideFiles;

  State(const detail::FileParts& parts, const std::string& name, const SaveOptions& options,
        const Run& run);
  /// Finds the files beside the target, opens it and writes it.
  rasterkit::Report Write(const detail::FileParts& parts, const std::string& name,
                          const SaveOptions& options, detail::RunScope& scope);

  void BeforeCommit() {
    if (!sideFiles) return;
    sideFiles->BeforeCommit();
    file->SetBackupNumber(sideFiles->BackupNumber());
  }
  void NameBackup() {
    const std::string backup = file ? file->BackupName() : "";
    if (!backup.empty()) report.backups.push_back(backup);
  }
  void AfterCommit() {
    NameBackup();
    std::exception_ptr error;
    if (sideFiles) {
      try {
        sideFiles->AfterCommit();
      } catch (...) {
        error = std::current_exception();
      }
      const std::vector<std::string>& backups = sideFiles->Backups();
      report.backups.insert(report.backups.end(), backups.begin(), backups.end());
    }
    for (const std::string& warning : file->Warnings()) {
      report.warnings.push_back(warning);
    }
    file.reset();
    if (error) std::rethrow_exception(error);
  }
};

namespace {

bool IsUnsynced(const std::exception_ptr& error) {
  try {
    if (error) std::rethrow_exception(error);
  } catch (const UnsyncedError&) {
    return true;
  } catch (...) {
    return false;
  }
  return false;
}

}  // namespace

PendingSave::State::State(const detail::FileParts& parts, const std::string& name,
                          const SaveOptions& options, const Run& run) {
  detail::RunScope scope(run);
  scope.SetTarget(name);
  report = detail::WriteMovedOrAnew(
      options, [&](const SaveOptions& how) { return Write(parts, name, how, scope); });
  file->Finish();
  if (sideFiles) sideFiles->Prepare();
}

rasterkit::Report PendingSave::State::Write(const detail::FileParts& parts, const std::string& name,
                                            const SaveOptions& options, detail::RunScope& scope) {
  Changes sideChanges;
  if (auto files = detail::SideFilesOf(parts, name, options, sideChanges)) {
    sideFiles.emplace(std::move(*files));
  }
  file = std::make_unique<AtomicFile>(
      name, AtomicFileOptions{options.mayReplace ? IfExists::replace : IfExists::fail,
                              options.syncs, options.keepsBackup});
  for (const detail::PagePart& page : parts.pages) {
    if (!file->IsSeekable() && page.source->IsNamed(name)) {
      throw FileError("cannot be written: it is the file of the picture itself", name);
    }
  }
  rasterkit::Report written =
      detail::WriteParts(*file, parts, options, sideFiles.has_value(), scope);
  detail::AddSideFiles(written, sideFiles ? &*sideFiles : nullptr, sideChanges);
  return written;
}

PendingSave::PendingSave(const Picture& picture, const std::string& file,
                         const SaveOptions& options, const Run& run) try
    : PendingSave(detail::PartsOf(picture, detail::TargetType(file, options), options), file,
                  options, run) {
} catch (Error& error) {
  error.AttachFile(file);
  throw;
}

PendingSave::PendingSave(const detail::FileParts& parts, const std::string& file,
                         const SaveOptions& options, const Run& run) try
    : state_(std::make_unique<State>(parts, file, options, run)) {
} catch (Error& error) {
  error.AttachFile(file);
  throw;
}

PendingSave::~PendingSave() = default;
PendingSave::PendingSave(PendingSave&&) noexcept = default;

const rasterkit::Report& PendingSave::Report() const {
  return state_->report;
}

void PendingSave::Commit() {
  PendingSave* const self = this;
  if (const std::exception_ptr error = CommitAll({&self, 1}).front()) std::rethrow_exception(error);
}

std::vector<std::exception_ptr> PendingSave::CommitAll(std::span<PendingSave* const> saves) {
  std::vector<std::exception_ptr> errors(saves.size());
  const auto attempt = [&](size_t i, void (State::*step)()) {
    if (errors[i]) return;
    try {
      (*saves[i]->state_.*step)();
    } catch (...) {
      errors[i] = std::current_exception();
    }
  };
  std::vector<std::unique_ptr<AtomicFile>> files;
  std::vector<size_t> places;
  for (size_t i = 0; i < saves.size(); ++i) {
    if (!saves[i]->state_->file) {
      errors[i] = std::make_exception_ptr(FileError("was committed already"));
    }
    attempt(i, &State::BeforeCommit);
    if (errors[i]) continue;
    files.push_back(std::move(saves[i]->state_->file));
    places.push_back(i);
  }
  std::vector<std::exception_ptr> committed = AtomicFile::CommitAll(files);
  for (size_t i = 0; i < places.size(); ++i) {
    saves[places[i]]->state_->file = std::move(files[i]);
    errors[places[i]] = committed[i];
  }
  for (size_t i = 0; i < saves.size(); ++i) {
    State& state = *saves[i]->state_;
    // The new picture has its name: what lies beside it becomes true, too.
    const std::exception_ptr unsynced =
        IsUnsynced(errors[i]) ? std::exchange(errors[i], nullptr) : nullptr;
    if (errors[i]) state.NameBackup();
    attempt(i, &State::AfterCommit);
    if (!errors[i]) errors[i] = unsynced;
    // Moves an old world file back.
    if (errors[i]) state.sideFiles.reset();
  }
  return errors;
}

}  // namespace rasterkit
