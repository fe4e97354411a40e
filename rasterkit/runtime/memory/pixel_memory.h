#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// One block of memory for rows of pixels, aligned to at least 64 bytes, its content undefined
/// after creation.
///
/// Large blocks lie on huge pages where the system offers them, and freed ones are kept for the
/// next picture (within a bound), because fresh pages cost more than most kernels. Move-only.
class RASTERKIT_EXPORT PixelMemory {
 public:
  PixelMemory() = default;
  /// Throws LimitError when the system has no such block.
  explicit PixelMemory(size_t bytes);
  ~PixelMemory();
  PixelMemory(PixelMemory&& other) noexcept;
  PixelMemory& operator=(PixelMemory&& other) noexcept;

  uint8_t* Data() { return data_; }
  const uint8_t* Data() const { return data_; }
  size_t Size() const { return size_; }

  /// Gives the kept blocks back to the system.
  static void Trim();

 private:
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
  /// Of a block from the pool; 0 for a plain one.
  size_t capacity_ = 0;
};

}  // namespace rasterkit
