#pragma once

#include <functional>
#include <memory>

#include <rasterkit/bands/colors/gray_counts.h>
#include <rasterkit/dialogs/values/borrowed_pixels.h>
#include <rasterkit/qt/latest_task.h>

namespace rasterkit {

/// Counts the gray values of a whole picture on another thread.
class GrayCounting {
 public:
  /// Called on the thread of this object, through Qt's event loop.
  using Answer = std::function<void(const GrayCounts& counts)>;

  /// The picture must outlive this object.
  explicit GrayCounting(const TBitmap& picture);
  ~GrayCounting();
  GrayCounting(const GrayCounting&) = delete;
  GrayCounting& operator=(const GrayCounting&) = delete;

  void Start(Answer answer);

 private:
  const std::shared_ptr<BorrowedPixels> picture_;
  detail::LatestTask task_;
};

/// The gray values of all pixels of a bitmap, counted at once.
GrayCounts CountGraysOf(const TBitmap& bitmap);

}  // namespace rasterkit
