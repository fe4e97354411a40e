#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// The bytes of a pipe or a device, which has no size and gives them only once: all of them when
/// the first ones are those of a known kind of picture, else the first ones alone, as a device may
/// never end. Throws LimitError when they exceed the picture memory budget.
RASTERKIT_EXPORT std::vector<uint8_t> ReadUnsizedPicture(TStream& stream);

}  // namespace rasterkit
