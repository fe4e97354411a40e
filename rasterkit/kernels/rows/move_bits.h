#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// Copies `count` bits from bit `sourceBit` of a row to bit `targetBit` of another one; bit 0 is
/// the highest of the first byte. The target's bits beside them stay as they are, and no byte of
/// the source is read that holds none of them. The rows do not overlap.
void MoveBits(const uint8_t* source, size_t sourceBit, uint8_t* target, size_t targetBit,
              size_t count);

}  // namespace rasterkit::kernels
