#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

/// Makes the calling thread, and the threads that it starts, work for one of several jobs that
/// share the memory of the process. Such a job waits for memory that other jobs hold instead of
/// failing.
///
/// Jobs that all wait for each other cannot go on: then the last one that came is refused with a
/// LimitError. It should return its memory and be repeated with `kNoLimit` as its need.
class RASTERKIT_EXPORT MemoryJobScope {
 public:
  /// Reserves `need` bytes: waits until they fit beside what other jobs hold and reserve, or until
  /// there is no other job. Jobs enter in the order in which they came. More may be taken later.
  explicit MemoryJobScope(uint64_t need);
  ~MemoryJobScope();
  MemoryJobScope(const MemoryJobScope&) = delete;
  MemoryJobScope& operator=(const MemoryJobScope&) = delete;

  /// True if memory was refused because all jobs waited. The result of the job is incomplete then,
  /// even if the error was caught on the way.
  bool WasRefused() const;

 private:
  const std::shared_ptr<detail::MemoryJob> job_;
  const LimitsScope scope_;
};

/// Throws LimitError if memory was refused to the job of this thread; call it before a result is
/// kept. No-op without a job.
RASTERKIT_EXPORT void RequireMemoryOfJob();

}  // namespace rasterkit
