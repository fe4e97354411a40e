#include "tool/command/commit_queue.h"

#include <algorithm>
#include <utility>

#include <rasterkit/runtime/files/open_files.h>

namespace rasterkit::tool {
namespace {

constexpr size_t kMostWaiting = 128;

/// An output has two or three open files, and as many outputs as wait are committed at the same
/// time. The rest is for the jobs.
constexpr size_t kOpenFilesPerWaiting = 8;

}  // namespace

std::vector<std::string> FinishedOutput::Backups() const {
  if (picture) return picture->Report().backups;
  const std::string backup = file ? file->BackupName() : "";
  return backup.empty() ? std::vector<std::string>() : std::vector{backup};
}

std::vector<std::exception_ptr> CommitTogether(std::span<FinishedOutput> outputs) {
  std::vector<std::exception_ptr> errors(outputs.size());
  std::vector<PendingSave*> pictures;
  std::vector<std::unique_ptr<AtomicFile>> files;
  std::vector<size_t> pictureAt, fileAt;
  for (size_t i = 0; i < outputs.size(); ++i) {
    (outputs[i].picture ? pictureAt : fileAt).push_back(i);
    if (outputs[i].picture) pictures.push_back(outputs[i].picture.get());
  }
  files.reserve(fileAt.size());
  for (const size_t i : fileAt) files.push_back(std::move(outputs[i].file));
  const std::vector<std::exception_ptr> ofPictures = PendingSave::CommitAll(pictures);
  const std::vector<std::exception_ptr> ofFiles = AtomicFile::CommitAll(files);
  for (size_t i = 0; i < pictureAt.size(); ++i) errors[pictureAt[i]] = ofPictures[i];
  for (size_t i = 0; i < fileAt.size(); ++i) {
    errors[fileAt[i]] = ofFiles[i];
    outputs[fileAt[i]].file = std::move(files[i]);
  }
  return errors;
}

size_t CommitQueue::MostWaiting() {
  return std::clamp<size_t>(detail::MostOpenFiles() / kOpenFilesPerWaiting, 1, kMostWaiting);
}

void CommitQueue::Add(FinishedOutput output, Done done) {
  std::unique_lock lock(mutex_);
  if (Start()) {
    changed_.wait(lock, [this] { return outputs_.size() < mostWaiting_; });
    outputs_.push_back(std::move(output));
    done_.push_back(std::move(done));
    changed_.notify_all();
    return;
  }
  lock.unlock();
  Commit({&output, 1}, {&done, 1});
}

bool CommitQueue::Start() {
  if (thread_.joinable()) return true;
  try {
    outputs_.reserve(mostWaiting_);
    taken_.reserve(mostWaiting_);
    done_.reserve(mostWaiting_);
    takenDone_.reserve(mostWaiting_);
    thread_ = std::thread([this] { Work(); });
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

void CommitQueue::Drain() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void CommitQueue::Work() {
  while (Take()) {
    Commit(taken_, takenDone_);
    taken_.clear();
    takenDone_.clear();
  }
}

void CommitQueue::Commit(std::span<FinishedOutput> outputs, std::span<const Done> done) noexcept {
  std::vector<std::exception_ptr> errors;
  std::exception_ptr noCommit;
  try {
    errors = CommitTogether(outputs);
  } catch (const std::exception&) {
    noCommit = std::current_exception();
  }
  for (size_t i = 0; i < outputs.size(); ++i) done[i](outputs[i], noCommit ? noCommit : errors[i]);
}

bool CommitQueue::Take() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return isEnding_ || !outputs_.empty(); });
  std::swap(outputs_, taken_);
  std::swap(done_, takenDone_);
  changed_.notify_all();
  return !taken_.empty();
}

}  // namespace rasterkit::tool
