#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include <rasterkit/runtime/files/atomic_file.h>

namespace rasterkit::tool {

/// Commits finished outputs on a thread of its own, so that the next picture is processed while the
/// disk works. All outputs that wait are committed together.
class CommitQueue {
 public:
  /// Called, usually on the thread of the queue, with the output and its error, null on success.
  /// Must not throw.
  using Done = std::function<void(const AtomicFile& file, const std::exception_ptr& error)>;

  CommitQueue() = default;
  ~CommitQueue() { Drain(); }
  CommitQueue(const CommitQueue&) = delete;
  CommitQueue& operator=(const CommitQueue&) = delete;

  /// Waits if there are many outputs in the queue: each of them holds open files. Commits the
  /// output at once if the system has no more threads.
  void Add(std::unique_ptr<AtomicFile> file, Done done);

  /// Returns how many outputs may wait, which depends on how many files may be open.
  static size_t MostWaiting();

  /// Commits what is in the queue and ends the thread. Nothing is added afterwards.
  void Drain();

 private:
  struct Output {
    std::unique_ptr<AtomicFile> file;
    Done done;
  };

  /// Returns false if the system has no thread for the queue.
  bool Start();
  void Work();
  /// Passes an error to the outputs also if memory is missing.
  static void CommitTogether(std::span<Output> outputs) noexcept;
  /// Takes all outputs. Returns false at the end.
  bool Take();

  std::mutex mutex_;
  std::condition_variable changed_;
  const size_t mostWaiting_ = MostWaiting();
  /// What waits, and what the thread commits. Both have room for as many as may wait.
  std::vector<Output> outputs_, taken_;
  bool isEnding_ = false;
  std::thread thread_;
};

}  // namespace rasterkit::tool
