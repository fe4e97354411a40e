#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <rasterkit/runtime/files/atomic_file.h>

namespace rasterkit::tool {

/// Commits finished outputs on a thread of its own, so that the next picture is processed while the
/// disk works. All outputs that wait are committed together.
class CommitQueue {
 public:
  /// Called, usually on the thread of the queue, with the error of the output, null on success.
  using Done = std::function<void(const std::exception_ptr& error)>;

  CommitQueue() = default;
  ~CommitQueue() { Drain(); }
  CommitQueue(const CommitQueue&) = delete;
  CommitQueue& operator=(const CommitQueue&) = delete;

  /// Waits if there are many outputs in the queue: each of them holds open files. Commits the
  /// output at once if the system has no more threads.
  void Add(std::unique_ptr<AtomicFile> file, Done done);

  /// Commits what is in the queue and ends the thread. Nothing is added afterwards.
  void Drain();

 private:
  /// Returns false if the system has no thread for the queue.
  bool Start();
  void Work();
  static void CommitTogether(std::vector<std::unique_ptr<AtomicFile>>& files,
                             std::vector<Done>& done);
  /// Takes all outputs; nothing at the end.
  bool Take(std::vector<std::unique_ptr<AtomicFile>>& files, std::vector<Done>& done);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::unique_ptr<AtomicFile>> files_;
  std::vector<Done> done_;
  bool isEnding_ = false;
  std::thread thread_;
};

}  // namespace rasterkit::tool
