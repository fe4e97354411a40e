#pragma once

#include <thread>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The processor time in seconds that a running thread has used so far, waiting not counted. The
/// thread must not have been joined. 0 where the system does not say.
RASTERKIT_EXPORT double ProcessorSeconds(std::thread& thread);

}  // namespace rasterkit
