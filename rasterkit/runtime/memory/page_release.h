#pragma once

#include <cstddef>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Returns the memory of the whole pages of `data` to the system while the block stays allocated.
/// Its content is undefined afterwards; it may be written and freed as before. For large buffers
/// owned by a third-party library, read once and freed late. No-op if the system does not support
/// it.
RASTERKIT_EXPORT void ReleasePages(void* data, size_t bytes);

/// Sets all bytes of a PixelMemory, or of a part of it, to 0. Whole pages of large parts are
/// returned to the system instead of being written, so that they take no memory until they are
/// used.
RASTERKIT_EXPORT void ClearMemory(void* data, size_t bytes);

}  // namespace rasterkit
