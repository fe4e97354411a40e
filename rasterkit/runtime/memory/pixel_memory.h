#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit {

/// One block of memory for rows of pixels, aligned to at least 64 bytes. Its content is undefined
/// after creation. Move-only.
///
/// Blocks of 1 to 48 MiB use huge pages if the system supports them. Freed blocks are kept for the
/// next picture, up to a limit, because new pages cost more time than most kernels.
class RASTERKIT_EXPORT PixelMemory {
 public:
  PixelMemory() = default;
  /// Throws LimitError if out of memory or beyond the limit of the process (see MemoryShare).
  explicit PixelMemory(size_t bytes);
  /// Memory that somebody else keeps, and longer than this object. It is not counted.
  static PixelMemory Borrowed(uint8_t* data, size_t bytes);
  ~PixelMemory();
  PixelMemory(PixelMemory&& other) noexcept;
  PixelMemory& operator=(PixelMemory&& other) noexcept;

  uint8_t* Data() { return data_; }
  const uint8_t* Data() const { return data_; }
  size_t Size() const { return size_; }

  /// Returns the kept blocks to the system.
  static void Trim();

 private:
  void Allocate(size_t bytes);

  MemoryShare share_;
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
  /// Of a block from the pool; 0 for other blocks.
  size_t capacity_ = 0;
  bool isBorrowed_ = false;
};

}  // namespace rasterkit
