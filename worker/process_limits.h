#pragma once

#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit::worker {

/// Limits memory, processor time, files and core dumps of this process. Memory is not limited with
/// a sanitizer, which reserves nearly all addresses.
void LimitProcess(const detail::WorkerSetup& setup);

}  // namespace rasterkit::worker
