#pragma once

#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit::worker {

/// Locks this process in, for good: limits, no new rights, no files but fonts, no system calls but
/// those that reading needs. Everything else must be loaded, and no other thread may run yet.
detail::WorkerProtection LockIn(const detail::WorkerSetup& setup);

}  // namespace rasterkit::worker
