#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Reads a pipe or a device, which has no size and gives its bytes only once: all bytes if the
/// first ones are those of a known format, else the first ones alone, because a device may never
/// end. Throws LimitError if the bytes exceed the picture memory limit.
RASTERKIT_EXPORT std::vector<uint8_t> ReadUnsizedPicture(TStream& stream);

}  // namespace rasterkit
