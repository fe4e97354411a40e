#pragma once

#include <functional>
#include <mutex>
#include <shared_mutex>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// A picture of a caller that background work reads until it is taken away. The work may live
/// longer than the picture; it then finds that there is nothing to read.
class BorrowedPixels {
 public:
  explicit BorrowedPixels(const TBitmap& picture) : picture_(&picture) {}

  /// Calls `read` with the picture, which stays until it returns. False, without a call, after the
  /// picture was taken away. On any thread; `read` should take a few milliseconds.
  bool Read(const std::function<void(const TBitmap& picture)>& read) const {
    const std::shared_lock lock(mutex_);
    if (picture_ == nullptr) return false;
    read(*picture_);
    return true;
  }
  /// Waits for those that read.
  void TakeAway() {
    const std::unique_lock lock(mutex_);
    picture_ = nullptr;
  }

 private:
  mutable std::shared_mutex mutex_;
  const TBitmap* picture_;
};

}  // namespace rasterkit
