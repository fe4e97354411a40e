#include <sys/resource.h>

#include <rasterkit/runtime/process_usage.h>

namespace rasterkit {
namespace {

double SecondsOf(const timeval& time) {
  constexpr double kMicroseconds = 1e6;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / kMicroseconds;
}

}  // namespace

ProcessUsage UsageOfProcess() {
  rusage used{};
  if (getrusage(RUSAGE_SELF, &used) != 0) return {};
  constexpr uint64_t kKibibyte = 1024;
  ProcessUsage usage;
  usage.minorFaults = static_cast<uint64_t>(used.ru_minflt);
  usage.majorFaults = static_cast<uint64_t>(used.ru_majflt);
  usage.userSeconds = SecondsOf(used.ru_utime);
  usage.kernelSeconds = SecondsOf(used.ru_stime);
  usage.peakBytes = static_cast<uint64_t>(used.ru_maxrss) * kKibibyte;
  return usage;
}

}  // namespace rasterkit
