#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::detail {

/// Copies `count` bits between bit positions of two rows, the high bit of a byte first. Bits beside
/// them stay as they are. Source and target must not overlap.
void CopyPartBits(const uint8_t* source, size_t sourceBit, uint8_t* target, size_t targetBit,
                  size_t count);

}  // namespace rasterkit::detail
