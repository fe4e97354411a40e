#pragma once

#include <cstddef>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Returns the memory of the whole pages of `data` to the system while the block stays allocated.
/// Its content is undefined afterwards; it may be written and freed as before. For large buffers
/// owned by a third-party library, read once and freed late. No-op if the system does not support
/// it.
RASTERKIT_EXPORT void ReleasePages(void* data, size_t bytes);

}  // namespace rasterkit
