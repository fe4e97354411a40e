#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

#include <sys/mman.h>

#include <rasterkit/runtime/memory/block_pool.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kPage = size_t{2} << 20;
/// Zeroing a huge page takes an eighth of the time that its small pages take. But where free memory
/// is in small pieces, the system moves pages together first: once in 200 blocks of 64 MiB that
/// takes more than 0.1 s, and 1.2 s for 744 MiB (docs/benchmarks.md).
constexpr size_t kMostHuge = size_t{48} << 20;
constexpr size_t kMostKept = size_t{256} << 20;

/// The next multiple of 2 MiB; 0 when there is none.
size_t RoundUpToPage(size_t bytes) {
  if (bytes > std::numeric_limits<size_t>::max() - 2 * kPage) return 0;
  return (bytes + kPage - 1) / kPage * kPage;
}

/// Maps one page more than needed and cuts both ends off, since the system aligns to small pages
/// only.
LargeBlock MapBlock(size_t capacity) {
  void* mapped =
      mmap(nullptr, capacity + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) return {};
  auto* begin = static_cast<uint8_t*>(mapped);
  const size_t head = (kPage - reinterpret_cast<uintptr_t>(begin) % kPage) % kPage;
  if (head > 0) munmap(begin, head);
  if (head < kPage) munmap(begin + head + capacity, kPage - head);
  // Without huge pages the block is only slower.
  if (capacity <= kMostHuge) madvise(begin + head, capacity, MADV_HUGEPAGE);
  return {begin + head, capacity};
}

void UnmapBlock(const LargeBlock& block) {
  munmap(block.data, block.capacity);
}

/// The kept blocks, oldest first. Few, so that a plain walk finds the best one.
class BlockPool {
 public:
  LargeBlock Take(size_t capacity) {
    const std::lock_guard lock(mutex_);
    const auto best = BestFit(capacity);
    if (best != blocks_.end()) {
      const LargeBlock block = *best;
      Remove(best);
      return block;
    }
    // A fresh block replaces kept ones, so that keeping never raises the peak above what live
    // blocks needed.
    GiveBack(capacity);
    return {};
  }

  void Keep(LargeBlock block) {
    const std::lock_guard lock(mutex_);
    if (block.capacity > kMostKept) return UnmapBlock(block);
    while (kept_ + block.capacity > kMostKept) GiveBackOldest();
    try {
      blocks_.push_back(block);
      kept_ += block.capacity;
    } catch (const std::bad_alloc&) {
      UnmapBlock(block);
    }
  }

  void Clear() {
    const std::lock_guard lock(mutex_);
    while (!blocks_.empty()) GiveBackOldest();
  }

  size_t KeptBytes() {
    const std::lock_guard lock(mutex_);
    return kept_;
  }

 private:
  using Blocks = std::vector<LargeBlock>;

  /// The smallest block that holds `capacity` and wastes at most a quarter of it.
  Blocks::iterator BestFit(size_t capacity) {
    auto best = blocks_.end();
    for (auto block = blocks_.begin(); block != blocks_.end(); ++block) {
      const bool fits = block->capacity >= capacity && block->capacity - capacity <= capacity / 4;
      if (fits && (best == blocks_.end() || block->capacity < best->capacity)) best = block;
    }
    return best;
  }

  void GiveBack(size_t bytes) {
    for (size_t given = 0; given < bytes && !blocks_.empty();) {
      given += blocks_.front().capacity;
      GiveBackOldest();
    }
  }

  void GiveBackOldest() {
    UnmapBlock(blocks_.front());
    Remove(blocks_.begin());
  }

  void Remove(Blocks::iterator block) {
    kept_ -= block->capacity;
    blocks_.erase(block);
  }

  std::mutex mutex_;
  Blocks blocks_;
  size_t kept_ = 0;
};

/// Never destroyed: pictures in static objects may be freed after every destructor here has run.
BlockPool& Pool() {
  static BlockPool& pool = *std::make_unique<BlockPool>().release();
  return pool;
}

}  // namespace

LargeBlock TakeLargeBlock(size_t bytes) {
  const size_t capacity = RoundUpToPage(bytes);
  if (capacity == 0) return {};
  const LargeBlock kept = Pool().Take(capacity);
  return kept.data != nullptr ? kept : MapBlock(capacity);
}

void ReturnLargeBlock(LargeBlock block) {
  Pool().Keep(block);
}

void TrimLargeBlocks() {
  Pool().Clear();
}

size_t KeptLargeBytes() {
  return Pool().KeptBytes();
}

}  // namespace rasterkit::detail
