#include <algorithm>

#include <rasterkit/codecs/tiff/tiff_source.h>

namespace rasterkit::detail {

size_t TiffSource::ReadAt(uint64_t offset, std::span<uint8_t> target) {
  if (offset >= size_) return 0;
  const auto count = static_cast<size_t>(std::min<uint64_t>(target.size(), size_ - offset));
  const std::lock_guard lock(mutex_);
  stream_.SetPosition(start_ + offset);
  return stream_.Read(target.first(count));
}

size_t TiffSource::ReadAt(uint64_t offset, std::span<const std::span<uint8_t>> pieces) {
  if (offset >= size_) return 0;
  const std::lock_guard lock(mutex_);
  stream_.SetPosition(start_ + offset);
  const size_t count = stream_.ReadScattered(pieces);
  return static_cast<size_t>(std::min<uint64_t>(count, size_ - offset));
}

size_t TiffSource::TryReadAt(uint64_t offset, std::span<uint8_t> target) noexcept {
  try {
    return ReadAt(offset, target);
  } catch (...) {
    const std::lock_guard lock(mutex_);
    if (!error_) error_ = std::current_exception();
    return 0;
  }
}

void TiffSource::RethrowKept() {
  const std::lock_guard lock(mutex_);
  if (error_) std::rethrow_exception(error_);
}

}  // namespace rasterkit::detail
