#pragma once

#include <condition_variable>
#include <list>
#include <mutex>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

/// Somebody who may hold a running worker.
class WorkerHolder {
 public:
  virtual ~WorkerHolder() = default;
  /// Ends the worker. Called while the holder does not use it, on any thread.
  virtual void GiveUpWorker() = 0;
};

/// Places for running workers, as many as processors unless SetMostWorkers says otherwise.
///
/// A holder with a place either uses its worker or is idle. If all places are taken, an idle holder
/// loses its worker. A thread that already uses a worker gets another place at once, since it would
/// wait for itself.
class WorkerSlots {
 public:
  explicit WorkerSlots(size_t places) : places_(places) {}
  /// Those of this process.
  static WorkerSlots& Instance();

  /// Waits at most 10 ms for a place and marks it as used. Returns false if there is none yet.
  bool TryUse(WorkerHolder& holder);
  size_t Places() const;
  /// Takes effect when the next place is taken.
  void SetPlaces(size_t places);
  /// Marks the place as idle.
  void Rest(WorkerHolder& holder);
  /// Gives the place back, used or idle, if the holder has one.
  void Leave(WorkerHolder& holder);

 private:
  bool HasPlace(WorkerHolder& holder) const;
  /// Takes the place of the holder that is idle for the longest time.
  bool TakeFromIdle();

  size_t places_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::list<WorkerHolder*> used_;
  /// The one that is idle for the longest time first.
  std::list<WorkerHolder*> idle_;
};

/// Sets how many workers this process runs at the same time, at least 1. A program that reads in
/// `most` threads gives each one its place. To be called before those threads start.
RASTERKIT_EXPORT void SetMostWorkers(size_t most);

/// Returns the limits of one of `most` workers for a call with these limits: it may take its part
/// of the memory of the process, but at least 64 MiB if the process may.
RASTERKIT_EXPORT Limits LimitsOfWorker(Limits limits, size_t most);

}  // namespace rasterkit::detail
