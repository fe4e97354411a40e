#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

/// The memory of the process that is shared by its jobs; internal to this folder.
namespace rasterkit::detail {

/// One of the jobs. All fields are guarded by the mutex of ProcessMemory.
class MemoryJob {
 public:
  uint64_t reserved = 0, held = 0;
  /// Threads of the job that wait for memory.
  int waiting = 0;
  /// Bytes that one of them waits for.
  uint64_t wanted = 0;
  bool wasRefused = false;

  /// Bytes that other jobs cannot have.
  uint64_t Claimed() const { return reserved > held ? reserved : held; }
};

class ProcessMemory {
 public:
  /// The one of the process; never destroyed, since static objects may hold pictures.
  static ProcessMemory& Instance();

  uint64_t Held() const { return held_; }

  /// Counts bytes of a thread without limit and job.
  void Add(uint64_t bytes) { held_ += bytes; }
  /// Counts bytes, or waits, or throws LimitError. `job` may be null.
  void Take(uint64_t bytes, uint64_t limit, MemoryJob* job);
  void Return(uint64_t bytes, MemoryJob* job);

  /// Waits until the job may start.
  void Enter(const std::shared_ptr<MemoryJob>& job, uint64_t limit);
  void Leave(const std::shared_ptr<MemoryJob>& job);
  bool WasRefused(const MemoryJob& job);

 private:
  using Lock = std::unique_lock<std::mutex>;

  /// True if no other job than `job` would have to give memory back.
  bool Fits(uint64_t bytes, uint64_t limit, const MemoryJob* job) const;
  bool IsAlone(const MemoryJob* job) const;
  /// True if every other job waits for memory that is not there.
  bool AreOthersStuck(uint64_t limit, const MemoryJob* job) const;
  bool MayEnter(const MemoryJob& job, uint64_t limit) const;

  std::mutex mutex_;
  std::condition_variable changed_;
  /// Both are atomic, so that threads without a job need no lock unless somebody sleeps. A thread
  /// counts itself as a sleeper before it looks at `held_` for the last time.
  std::atomic<uint64_t> held_{0};
  std::atomic<int> sleepers_{0};
  std::vector<std::shared_ptr<MemoryJob>> jobs_;
  /// Jobs that wait to start, in the order of their arrival.
  std::deque<const MemoryJob*> entering_;
};

}  // namespace rasterkit::detail
