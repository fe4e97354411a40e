#pragma once

#include <cstddef>
#include <cstdint>

/// Large blocks of memory from the system; internal to this folder.
namespace rasterkit::detail {

/// A block of `capacity` bytes, a multiple of 2 MiB and aligned to it.
struct LargeBlock {
  uint8_t* data = nullptr;
  size_t capacity = 0;
};

/// Returns a kept block that fits, or a new one; null data if out of memory. The content is
/// undefined.
LargeBlock TakeLargeBlock(size_t bytes);

/// Keeps the block for the next picture or returns it to the system.
void ReturnLargeBlock(LargeBlock block);

/// Returns all kept blocks to the system.
void TrimLargeBlocks();

/// Returns the number of bytes kept now; for tests.
size_t KeptLargeBytes();

}  // namespace rasterkit::detail
