#include "worker/process_limits.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <string>
#include <system_error>

#include <sys/prctl.h>
#include <sys/resource.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/worker/worker_answers.h>
#include <rasterkit/runtime/worker/worker_memory.h>

namespace rasterkit::worker {
namespace {

/// Enough for fonts and the memory in which rows are sent. Few, since RLIMIT_DATA does not count
/// such memory.
constexpr uint64_t kMostOpenFiles = 24;

/// Addresses that libraries, stacks and allocators reserve without using them.
[[maybe_unused]] constexpr uint64_t kReservedBytes = uint64_t{4} << 30;

void Require(int result, const char* what) {
  if (result == 0) return;
  throw Error(std::string("the process that reads the file cannot be locked in: ") + what + ": " +
              std::generic_category().message(errno));
}

void Limit(int resource, uint64_t most) {
  const auto value = static_cast<rlim_t>(std::min<uint64_t>(most, RLIM_INFINITY));
  rlimit limit{};
  Require(getrlimit(static_cast<__rlimit_resource_t>(resource), &limit), "its limits");
  // A process may lower what it got, but not raise it.
  limit.rlim_max = std::min(limit.rlim_max, value);
  limit.rlim_cur = std::min(limit.rlim_cur, limit.rlim_max);
  Require(setrlimit(static_cast<__rlimit_resource_t>(resource), &limit), "its limits");
}

/// The picture of a page is drawn beside the content of its file. The decoder of HEIF files holds
/// its own copies of the pixels.
uint64_t MostMemory(const detail::WorkerSetup& setup) {
  const bool holdsMore =
      setup.reader == detail::WorkerReader::pdf || setup.reader == detail::WorkerReader::heif;
  const uint64_t page = std::min(setup.limits.pictureBytes, setup.limits.processBytes);
  return detail::WorkerMemoryBytes(setup.limits, holdsMore ? page : 0);
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
  Require(prctl(PR_SET_DUMPABLE, 0, 0, 0, 0), "its core dumps");
  Require(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), "its privileges");
}

}  // namespace rasterkit::worker
