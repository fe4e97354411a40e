#pragma once

#include <cstddef>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Gives the memory behind whole pages of `data` back to the system while the block stays
/// allocated: its content is undefined from then on, and it may be written and freed as before.
/// For a large block of somebody else's that is read once and freed late. Does nothing where the
/// system knows no such thing.
RASTERKIT_EXPORT void ReleasePages(void* data, size_t bytes);

}  // namespace rasterkit
