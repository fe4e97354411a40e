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

#include <rasterkit/pictures/pending_save.h>
#include <rasterkit/runtime/files/atomic_file.h>

namespace rasterkit::tool {

/// An output that is finished and does not have its name yet: a picture with the files beside it,
/// or any other file. One of the two is set.
struct FinishedOutput {
  std::unique_ptr<PendingSave> picture;
  std::unique_ptr<AtomicFile> file;

  explicit operator bool() const { return picture != nullptr || file != nullptr; }
  /// What the output does not have from the file that it replaced, after the commit.
  const std::vector<std::string>& Warnings() const {
    return picture ? picture->Report().warnings : file->Warnings();
  }
  /// Backups of replaced files, after the commit.
  std::vector<std::string> Backups() const;
};

/// Gives all outputs their names, and waits once for all on the same disk. Returns the error for
/// each, null on success.
std::vector<std::exception_ptr> CommitTogether(std::span<FinishedOutput> outputs);

/// Commits finished outputs on a thread of its own, so that the next picture is processed while the
/// disk works. All outputs that wait are committed together.
class CommitQueue {
 public:
  /// Called, usually on the thread of the queue, with the output and its error, null on success.
  /// Must not throw.
  using Done = std::function<void(const FinishedOutput& output, const std::exception_ptr& error)>;

  CommitQueue() = default;
  ~CommitQueue() { Drain(); }
  CommitQueue(const CommitQueue&) = delete;
  CommitQueue& operator=(const CommitQueue&) = delete;

  /// Waits if there are many outputs in the queue: each of them holds open files. Commits the
  /// output at once if the system has no more threads.
  void Add(FinishedOutput output, Done done);

  /// Returns how many outputs may wait, which depends on how many files may be open.
  static size_t MostWaiting();

  /// Commits what is in the queue and ends the thread. Nothing is added afterwards.
  void Drain();

 private:
  /// Returns false if the system has no thread for the queue.
  bool Start();
  void Work();
  /// Passes an error to the outputs also if memory is missing.
  static void Commit(std::span<FinishedOutput> outputs, std::span<const Done> done) noexcept;
  /// Takes all outputs. Returns false at the end.
  bool Take();

  std::mutex mutex_;
  std::condition_variable changed_;
  const size_t mostWaiting_ = MostWaiting();
  /// What waits, and what the thread commits. All have room for as many as may wait.
  std::vector<FinishedOutput> outputs_, taken_;
  std::vector<Done> done_, takenDone_;
  bool isEnding_ = false;
  std::thread thread_;
};

}  // namespace rasterkit::tool
