#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What this process has used so far. The processes of workers do not count.
struct ProcessUsage {
  /// Pages of memory that were handed out or found in memory, and those that were read from a disk.
  uint64_t minorFaults = 0, majorFaults = 0;
  /// Processor time of all threads, in seconds.
  double userSeconds = 0, kernelSeconds = 0;
  /// Most bytes of memory that the process held at a time.
  uint64_t peakBytes = 0;
};

RASTERKIT_EXPORT ProcessUsage UsageOfProcess();

}  // namespace rasterkit
