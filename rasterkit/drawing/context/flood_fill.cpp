#include <algorithm>
#include <vector>

#include <rasterkit/drawing/context/flood_fill.h>
#include <rasterkit/drawing/ink/drawing_cost.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>

namespace rasterkit::detail {
namespace {

class Flood {
 public:
  Flood(const Painter& painter, uint32_t color, FloodFill kind)
      : painter_(painter),
        box_(painter.Clip().Bounds()),
        color_(color & 0xFFFFFF),
        kind_(kind),
        mask_(box_) {
    painter.Work().Charge(PixelsOf(box_));
  }

  bool Start(PixelPoint at) {
    if (!IsFree(at.x, at.y)) return false;
    waiting_.push_back(at);
    while (!waiting_.empty()) {
      const PixelPoint next = waiting_.back();
      waiting_.pop_back();
      if (IsFree(next.x, next.y)) FillRun(next);
    }
    return true;
  }
  CoverageMask Take() { return std::move(mask_); }

 private:
  bool IsFree(int x, int y) const {
    if (x < box_.left || x >= box_.right || y < box_.top || y >= box_.bottom) return false;
    if (mask_.Row(y)[x - box_.left] != 0) return false;
    const bool isColor = (painter_.Pixel(x, y) & 0xFFFFFF) == color_;
    return isColor == (kind_ == FloodFill::overSurface) && painter_.Clip().Contains(x, y);
  }

  /// Fills the run of the row around `at`, and queues one pixel of each fillable run above and
  /// below.
  void FillRun(PixelPoint at) {
    int left = at.x, right = at.x + 1;
    while (IsFree(left - 1, at.y)) --left;
    while (IsFree(right, at.y)) ++right;
    painter_.Work().Charge((right - left) * kFloodPixel);
    std::fill(mask_.Row(at.y) + (left - box_.left), mask_.Row(at.y) + (right - box_.left), 255);
    for (const int y : {at.y - 1, at.y + 1}) {
      bool wasFree = false;
      for (int x = left; x < right; ++x) {
        const bool isFree = IsFree(x, y);
        if (isFree && !wasFree) waiting_.push_back({x, y});
        wasFree = isFree;
      }
    }
  }

  const Painter& painter_;
  const PixelRect box_;
  const uint32_t color_;
  const FloodFill kind_;
  CoverageMask mask_;
  std::vector<PixelPoint> waiting_;
};

}  // namespace

std::optional<CoverageMask> FloodMask(const Painter& painter, PixelPoint start, uint32_t color,
                                      FloodFill kind) {
  if (IsEmpty(painter.Clip().Bounds())) return std::nullopt;
  Flood flood(painter, color, kind);
  if (!flood.Start(start)) return std::nullopt;
  return flood.Take();
}

}  // namespace rasterkit::detail
