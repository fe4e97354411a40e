#include <algorithm>
#include <filesystem>
#include <thread>

#include <rasterkit/pictures/flow_needs.h>
#include <rasterkit/pictures/run_scope.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit::detail {
namespace {

constexpr int kMostThreads = 64;
/// Smaller steps are not reported, but for the last.
constexpr double kSmallestStep = 1e-3;

int ThreadsOf(const Run& run) {
  if (run.threads > 0) return std::min(run.threads, kMostThreads);
  return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 64u));
}

/// True for a device or a pipe, whose folder is no place for files.
bool IsSpecialFile(const std::string& file) {
  std::error_code error;
  return std::filesystem::is_other(ToPath(file), error);
}

}  // namespace

RunScope::RunScope(const Run& run)
    : run_(run),
      threads_(ThreadsOf(run)),
      scratchFolder_(run.scratchFolder),
      scope_(run.limits ? *run.limits : CurrentLimits(), run.cancel,
             run.progress ? std::function<void()>([this] { Check(); }) : nullptr) {
  RequireTime();
}

void RunScope::SetTarget(const std::string& file) {
  if (!run_.scratchFolder.empty() || IsSpecialFile(file)) return;
  const std::string folder = ExtractFilePath(file);
  scratchFolder_ = folder.empty() ? "." : folder;
}

FlowSettings RunScope::Flow() const {
  FlowSettings settings = UsualFlow();
  settings.rows = run_.bandRows;
  settings.threads = threads_;
  settings.scratchFolder = scratchFolder_;
  return settings;
}

void RunScope::Begin(double end, int rows) {
  from_ = std::max(reported_, 0.0);
  end_ = end;
  checks_ = 0;
  rows_ = std::max(rows, 1);
  Report(from_);
}

StageRun RunScope::Stages() {
  StageRun run{threads_, {}};
  if (run_.progress) {
    // Checks come as often as the work of a stage likes.
    rows_ = 0;
    run.progress = [this](double done) { Report(from_ + (end_ - from_) * done); };
  }
  return run;
}

void RunScope::Check() {
  if (rows_ <= 0) return;
  // Some formats are checked for each row, others for many rows at once: the part is never reported
  // as done, and moves on in each case.
  constexpr double kFewChecks = 16;
  ++checks_;
  Report(from_ + (end_ - from_) * checks_ / (checks_ + 1 + rows_ / kFewChecks));
}

void RunScope::Report(double done) {
  if (!run_.progress || isReporting_) return;
  done = std::clamp(done, 0.0, 1.0);
  const bool isStep = done >= reported_ + kSmallestStep || (done == 1 && reported_ < 1);
  if (!isStep) return;
  reported_ = done;
  // The callback may call the library.
  isReporting_ = true;
  try {
    run_.progress(done);
  } catch (...) {
    isReporting_ = false;
    throw;
  }
  isReporting_ = false;
}

}  // namespace rasterkit::detail
