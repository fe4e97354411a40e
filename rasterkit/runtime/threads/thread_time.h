#pragma once

#include <thread>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Returns the processor time in seconds that a running thread has used, without waiting. The
/// thread must not have been joined. 0 if the system does not support it.
RASTERKIT_EXPORT double ProcessorSeconds(std::thread& thread);

}  // namespace rasterkit
