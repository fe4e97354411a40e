#pragma once

#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit::worker {

/// Limits memory, processor time, files and core dumps of this process, and forbids it new
/// privileges. Memory is not limited with a sanitizer, which reserves nearly all addresses. Throws
/// Error if the system refuses.
void LimitProcess(const detail::WorkerSetup& setup);

}  // namespace rasterkit::worker
