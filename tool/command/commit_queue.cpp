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

size_t CommitQueue::MostWaiting() {
  return std::clamp<size_t>(detail::MostOpenFiles() / kOpenFilesPerWaiting, 1, kMostWaiting);
}

void CommitQueue::Add(std::unique_ptr<AtomicFile> file, Done done) {
  Output output{std::move(file), std::move(done)};
  std::unique_lock lock(mutex_);
  if (Start()) {
    changed_.wait(lock, [this] { return outputs_.size() < mostWaiting_; });
    outputs_.push_back(std::move(output));
    changed_.notify_all();
    return;
  }
  lock.unlock();
  CommitTogether({&output, 1});
}

bool CommitQueue::Start() {
  if (thread_.joinable()) return true;
  try {
    outputs_.reserve(mostWaiting_);
    taken_.reserve(mostWaiting_);
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
    CommitTogether(taken_);
    taken_.clear();
  }
}

void CommitQueue::CommitTogether(std::span<Output> outputs) noexcept {
  std::vector<std::unique_ptr<AtomicFile>> files;
  std::vector<std::exception_ptr> errors;
  std::exception_ptr noCommit;
  try {
    files.reserve(outputs.size());
    for (Output& output : outputs) files.push_back(std::move(output.file));
    errors = AtomicFile::CommitAll(files);
  } catch (const std::exception&) {
    noCommit = std::current_exception();
  }
  for (size_t i = 0; i < files.size(); ++i) outputs[i].file = std::move(files[i]);
  for (size_t i = 0; i < outputs.size(); ++i) {
    outputs[i].done(*outputs[i].file, noCommit ? noCommit : errors[i]);
  }
}

bool CommitQueue::Take() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return isEnding_ || !outputs_.empty(); });
  std::swap(taken_, outputs_);
  changed_.notify_all();
  return !taken_.empty();
}

}  // namespace rasterkit::tool
