#include "tool/command/commit_queue.h"

#include <utility>

namespace rasterkit::tool {
namespace {

/// Each output holds two or three open files, of which a process usually may have 1024.
constexpr size_t kMostWaiting = 128;

}  // namespace

void CommitQueue::Add(std::unique_ptr<AtomicFile> file, Done done) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return files_.size() < kMostWaiting; });
  files_.push_back(std::move(file));
  done_.push_back(std::move(done));
  if (!thread_.joinable()) thread_ = std::thread([this] { Work(); });
  changed_.notify_all();
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
  std::vector<std::unique_ptr<AtomicFile>> files;
  std::vector<Done> done;
  while (Take(files, done)) {
    const std::vector<std::exception_ptr> errors = AtomicFile::CommitAll(files);
    files.clear();
    for (size_t i = 0; i < done.size(); ++i) done[i](errors[i]);
    done.clear();
  }
}

bool CommitQueue::Take(std::vector<std::unique_ptr<AtomicFile>>& files, std::vector<Done>& done) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return isEnding_ || !files_.empty(); });
  std::swap(files, files_);
  std::swap(done, done_);
  changed_.notify_all();
  return !files.empty();
}

}  // namespace rasterkit::tool
