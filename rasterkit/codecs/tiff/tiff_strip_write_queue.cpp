#include <utility>

#include <rasterkit/codecs/tiff/tiff_strip_write_queue.h>

namespace rasterkit::detail {

std::optional<uint32_t> TiffStripQueue::Next() {
  std::unique_lock lock(mutex_);
  // The thread with the earliest strip never waits here, so that the others can continue.
  hasRoom_.wait(lock, [&] { return isStopped_ || next_ >= strips_ || next_ - written_ < window_; });
  if (isStopped_ || next_ >= strips_) return std::nullopt;
  return next_++;
}

void TiffStripQueue::Put(uint32_t strip, std::vector<uint8_t> bytes) {
  {
    const std::lock_guard lock(mutex_);
    waiting_.emplace(strip, std::move(bytes));
    for (auto due = waiting_.find(written_); due != waiting_.end() && !isStopped_;
         due = waiting_.find(written_)) {
      sink_(written_, due->second);
      waiting_.erase(due);
      written_++;
    }
  }
  hasRoom_.notify_all();
}

void TiffStripQueue::Stop() {
  {
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
  }
  hasRoom_.notify_all();
}

}  // namespace rasterkit::detail
