#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/block_pool.h>
#include <rasterkit/runtime/memory/pixel_memory.h>

namespace rasterkit {
namespace {

constexpr size_t kAlignment = 64;

#if defined(__SANITIZE_ADDRESS__)
#define RASTERKIT_PLAIN_BLOCKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
#define RASTERKIT_PLAIN_BLOCKS 1
#endif
#endif

#ifdef RASTERKIT_PLAIN_BLOCKS
// A kept or mapped block would hide overruns and uses after the end from the sanitizer.
constexpr size_t kLargeFrom = std::numeric_limits<size_t>::max();
#else
/// From here on a block of huge pages is worth its rounding up to 2 MiB.
constexpr size_t kLargeFrom = size_t{1} << 20;
#endif

/// The sanitizers end the program at a request beyond their own limit, where the system only
/// refuses.
constexpr uint64_t kMostPlain = uint64_t{1} << 39;

uint8_t* AllocatePlain(size_t bytes) {
  if (bytes > kMostPlain) return nullptr;
  void* data = nullptr;
  return posix_memalign(&data, kAlignment, bytes) == 0 ? static_cast<uint8_t*>(data) : nullptr;
}

}  // namespace

PixelMemory::PixelMemory(size_t bytes) : share_(bytes) {
  if (bytes == 0) return;
  Allocate(bytes);
  if (data_ == nullptr) {
    // The system may have refused because of the kept blocks.
    Trim();
    Allocate(bytes);
  }
  if (data_ == nullptr) {
    throw LimitError("the system has no block of " + std::to_string(bytes) + " bytes");
  }
  size_ = bytes;
}

void PixelMemory::Allocate(size_t bytes) {
  // Kept blocks are not in use, but they take memory all the same.
  const uint64_t limit = CurrentLimits().processBytes;
  if (limit != kNoLimit && ProcessPictureBytes() + detail::KeptLargeBytes() > limit) Trim();
  if (bytes >= kLargeFrom) {
    const detail::LargeBlock block = detail::TakeLargeBlock(bytes);
    data_ = block.data;
    capacity_ = block.capacity;
  } else {
    data_ = AllocatePlain(bytes);
  }
}

PixelMemory PixelMemory::Borrowed(uint8_t* data, size_t bytes) {
  PixelMemory memory;
  memory.data_ = data;
  memory.size_ = bytes;
  memory.isBorrowed_ = true;
  return memory;
}

PixelMemory::~PixelMemory() {
  if (isBorrowed_) return;
  if (capacity_ > 0) {
    detail::ReturnLargeBlock({data_, capacity_});
  } else {
    std::free(data_);
  }
}

PixelMemory::PixelMemory(PixelMemory&& other) noexcept
    : share_(std::move(other.share_)),
      data_(std::exchange(other.data_, nullptr)),
      size_(std::exchange(other.size_, 0)),
      capacity_(std::exchange(other.capacity_, 0)),
      isBorrowed_(std::exchange(other.isBorrowed_, false)) {}

PixelMemory& PixelMemory::operator=(PixelMemory&& other) noexcept {
  PixelMemory taken(std::move(other));
  std::swap(share_, taken.share_);
  std::swap(data_, taken.data_);
  std::swap(size_, taken.size_);
  std::swap(capacity_, taken.capacity_);
  std::swap(isBorrowed_, taken.isBorrowed_);
  return *this;
}

void PixelMemory::Trim() {
  detail::TrimLargeBlocks();
}

}  // namespace rasterkit
