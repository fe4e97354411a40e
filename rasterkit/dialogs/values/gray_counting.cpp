#include <algorithm>
#include <utility>

#include <rasterkit/dialogs/values/gray_counting.h>

namespace rasterkit {
namespace {

constexpr int kPixelsOfBand = 1 << 20;

GrayCounts CountRows(const TBitmap& bitmap, int first, int last) {
  std::optional<TColor> key;
  if (bitmap.Transparent()) key = bitmap.TransparentColor();
  return CountGrays(bitmap.Content(), key, first, last);
}

/// Nothing if the picture was taken away or it was canceled.
std::optional<GrayCounts> CountAll(const BorrowedPixels& picture,
                                   const std::atomic<bool>& isCanceled) {
  GrayCounts counts{};
  int next = 0;
  bool isDone = false;
  while (!isDone) {
    const bool isThere = picture.Read([&](const TBitmap& bitmap) {
      const int rows = std::max(kPixelsOfBand / std::max(bitmap.Width(), 1), 1);
      const int last = std::min(next + rows, bitmap.Height());
      const GrayCounts band = CountRows(bitmap, next, last);
      for (size_t i = 0; i < counts.size(); ++i) counts[i] += band[i];
      next = last;
      isDone = last == bitmap.Height();
    });
    if (!isThere || isCanceled) return std::nullopt;
  }
  return counts;
}

}  // namespace

GrayCounts CountGraysOf(const TBitmap& bitmap) {
  return CountRows(bitmap, 0, bitmap.Height());
}

GrayCounting::GrayCounting(const TBitmap& picture)
    : picture_(std::make_shared<BorrowedPixels>(picture)) {}

GrayCounting::~GrayCounting() {
  picture_->TakeAway();
}

void GrayCounting::Start(Answer answer) {
  task_.Run(
      [picture = picture_, answer = std::move(answer)](
          const std::atomic<bool>& isCanceled) -> detail::LatestTask::Answer {
        const auto counts = CountAll(*picture, isCanceled);
        return [answer, counts] {
          if (counts) answer(*counts);
        };
      },
      [] {});
}

}  // namespace rasterkit
