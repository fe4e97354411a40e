#include "worker/process_limits.h"

#include <algorithm>
#include <cmath>

#include <sys/prctl.h>
#include <sys/resource.h>

#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/worker/worker_answers.h>
#include <rasterkit/runtime/worker/worker_memory.h>

namespace rasterkit::worker {
namespace {

/// Enough for fonts and the memory in which rows are sent.
constexpr uint64_t kMostOpenFiles = 64;

/// Addresses that libraries, stacks and allocators reserve without using them.
constexpr uint64_t kReservedBytes = uint64_t{4} << 30;

void Limit(int resource, uint64_t most) {
  const auto value = static_cast<rlim_t>(std::min<uint64_t>(most, RLIM_INFINITY));
  rlimit limit{};
  getrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
  // A process may lower what it got, but not raise it.
  limit.rlim_max = std::min(limit.rlim_max, value);
  limit.rlim_cur = std::min(limit.rlim_cur, limit.rlim_max);
  setrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
}

/// The picture of a page is drawn beside the content of its file.
uint64_t MostMemory(const detail::WorkerSetup& setup) {
  const bool isPdf = setup.reader == detail::WorkerReader::pdf;
  const uint64_t page = std::min(setup.limits.pictureBytes, setup.limits.processBytes);
  return detail::WorkerMemoryBytes(setup.limits, isPdf ? page : 0);
}

}  // namespace

void LimitProcess(const detail::WorkerSetup& setup) {
  Limit(RLIMIT_CORE, 0);
  Limit(RLIMIT_NOFILE, kMostOpenFiles);
  Limit(RLIMIT_FSIZE, detail::kMostWorkerMemoryBytes);
  Limit(RLIMIT_MEMLOCK, 0);
  Limit(RLIMIT_MSGQUEUE, 0);
#ifndef RASTERKIT_WORKER_SANITIZED
  // Data is what is used; memory shared with others counts only as addresses.
  Limit(RLIMIT_DATA, MostMemory(setup));
  Limit(RLIMIT_AS, MostMemory(setup) + std::min(kNoLimit - MostMemory(setup), kReservedBytes));
  detail::AllowWorkerMemory(detail::WorkerMemoryBytes(setup.limits));
#else
  static_cast<void>(MostMemory);
#endif
  // The host counts the time that passes. This ends a worker whose host was killed meanwhile.
  if (setup.limits.seconds >= 0 && setup.limits.seconds < 1e6) {
    Limit(RLIMIT_CPU, static_cast<uint64_t>(std::ceil(setup.limits.seconds)) * 64 + 1);
  }
  // No other process of the user may look into this one, and it leaves no core dump.
  prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
  prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
}

}  // namespace rasterkit::worker
