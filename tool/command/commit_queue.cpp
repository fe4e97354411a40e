#include "tool/command/commit_queue.h"

#include <system_error>
#include <utility>

namespace rasterkit::tool {
namespace {

/// Each output holds two or three open files, of which a process usually may have 1024.
constexpr size_t kMostWaiting = 128;

}  // namespace

void CommitQueue::Add(std::unique_ptr<AtomicFile> file, Done done) {
  std::unique_lock lock(mutex_);
  if (!Start()) {
    lock.unlock();
    std::vector<std::unique_ptr<AtomicFile>> files;
    files.push_back(std::move(file));
    std::vector<Done> allDone = {std::move(done)};
    return CommitTogether(files, allDone);
  }
  changed_.wait(lock, [this] { return files_.size() < kMostWaiting; });
  files_.push_back(std::move(file));
  done_.push_back(std::move(done));
  changed_.notify_all();
}

bool CommitQueue::Start() {
  if (thread_.joinable()) return true;
  try {
    thread_ = std::thread([this] { Work(); });
    return true;
  } catch (const std::system_error&) {
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
  std::vector<std::unique_ptr<AtomicFile>> files;
  std::vector<Done> done;
  while (Take(files, done)) CommitTogether(files, done);
}

void CommitQueue::CommitTogether(std::vector<std::unique_ptr<AtomicFile>>& files,
                                 std::vector<Done>& done) {
  std::vector<std::exception_ptr> errors;
  try {
    errors = AtomicFile::CommitAll(files);
  } catch (const std::exception&) {
    errors.assign(files.size(), std::current_exception());
  }
  files.clear();
  for (size_t i = 0; i < done.size(); ++i) done[i](errors[i]);
  done.clear();
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
