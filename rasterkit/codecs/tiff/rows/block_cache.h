#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit::detail {

/// Converted pixels of strips and tiles of which only a part was read.
class BlockCache {
 public:
  struct Block {
    PixelMemory rows;
    size_t stride = 0;
    uint64_t usedAt = 0;
  };

  /// The block, or null. It stays valid until MakeRoom or Clear.
  const Block* Find(uint32_t position) const;
  /// Marks a block as used by this reading; false if it is not there.
  bool Use(uint32_t position, uint64_t reading);
  /// Drops blocks that this reading does not use, the longest unused first, until `bytes` more are
  /// within `budget` or none is left.
  void MakeRoom(uint64_t bytes, uint64_t budget, uint64_t reading);
  Block& Add(uint32_t position, size_t stride, size_t rows, uint64_t reading);
  void Clear();

 private:
  PixelMemory MemoryFor(size_t bytes);

  std::map<uint32_t, Block> blocks_;
  /// Of dropped blocks, for the next ones: freed pieces of memory among those in use are of little
  /// use to others.
  std::vector<PixelMemory> spare_;
  uint64_t bytes_ = 0;
};

}  // namespace rasterkit::detail
