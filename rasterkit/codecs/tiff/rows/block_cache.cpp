#include <algorithm>
#include <utility>

#include <rasterkit/codecs/tiff/rows/block_cache.h>

namespace rasterkit::detail {

const BlockCache::Block* BlockCache::Find(uint32_t position) const {
  const auto found = blocks_.find(position);
  return found == blocks_.end() ? nullptr : &found->second;
}

bool BlockCache::Use(uint32_t position, uint64_t reading) {
  const auto found = blocks_.find(position);
  if (found == blocks_.end()) return false;
  found->second.usedAt = reading;
  return true;
}

void BlockCache::MakeRoom(uint64_t bytes, uint64_t budget, uint64_t reading) {
  while (bytes_ + bytes > budget) {
    const auto oldest = std::min_element(
        blocks_.begin(), blocks_.end(),
        [](const auto& a, const auto& b) { return a.second.usedAt < b.second.usedAt; });
    if (oldest == blocks_.end() || oldest->second.usedAt >= reading) return;
    // Blocks of one reading are dropped together: the search would be repeated for each.
    const uint64_t usedAt = oldest->second.usedAt;
    for (auto block = oldest; block != blocks_.end() && bytes_ + bytes > budget;) {
      if (block->second.usedAt != usedAt) {
        ++block;
        continue;
      }
      bytes_ -= block->second.rows.Size();
      spare_.push_back(std::move(block->second.rows));
      block = blocks_.erase(block);
    }
  }
}

/// Spare memory that is too small is given back.
PixelMemory BlockCache::MemoryFor(size_t bytes) {
  while (!spare_.empty()) {
    PixelMemory memory = std::move(spare_.back());
    spare_.pop_back();
    if (memory.Size() >= bytes) return memory;
  }
  return PixelMemory(bytes);
}

void BlockCache::Clear() {
  blocks_.clear();
  spare_.clear();
  bytes_ = 0;
}

BlockCache::Block& BlockCache::Add(uint32_t position, size_t stride, size_t rows,
                                   uint64_t reading) {
  PixelMemory memory = MemoryFor(stride * rows);
  bytes_ += memory.Size();
  Block& block = blocks_[position];
  block = {std::move(memory), stride, reading};
  return block;
}

}  // namespace rasterkit::detail
