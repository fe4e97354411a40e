#pragma once

#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit::worker {

/// Locks this process in, for good: limits, no new rights, no files but fonts, no system calls but
/// those that reading needs. Everything else must be loaded, and no other thread may run yet.
///
/// Landlock may be absent. Throws UnsupportedError if the kernel has no filter of system calls, and
/// Error if it refuses a limit.
detail::WorkerProtection LockIn(const detail::WorkerSetup& setup);

}  // namespace rasterkit::worker
