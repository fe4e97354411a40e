#pragma once

#include <cstddef>
#include <cstdint>

/// Large blocks of memory from the system, internal to the room.
namespace rasterkit::detail {

/// A block of `capacity` bytes, a multiple of 2 MiB and aligned to it.
struct LargeBlock {
  uint8_t* data = nullptr;
  size_t capacity = 0;
};

/// A kept block that fits, or a fresh one; null data when the system refuses. The bytes are
/// undefined.
LargeBlock TakeLargeBlock(size_t bytes);

/// Keeps the block for the next picture, or gives it back to the system.
void ReturnLargeBlock(LargeBlock block);

/// Gives all kept blocks back to the system.
void TrimLargeBlocks();

/// Bytes kept at this moment; for tests.
size_t KeptLargeBytes();

}  // namespace rasterkit::detail
