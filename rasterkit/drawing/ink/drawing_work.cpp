#include <algorithm>
#include <limits>

#include <rasterkit/drawing/ink/drawing_work.h>

namespace rasterkit::detail {
namespace {

thread_local double limitOfThread = std::numeric_limits<double>::infinity();

}  // namespace

DrawingWork::DrawingWork(double pixels)
    : limit_(std::min(std::max(kLeastBudget, kPerPixel * pixels), limitOfThread)) {}

void DrawingWork::Raise(double more) {
  limit_ = std::min(limit_ + more, limitOfThread);
}

void DrawingWork::ThrowTooMuch() const {
  throw DrawingWorkError("metafile: the drawing exceeds its work budget; the rest is skipped");
}

DrawingWorkScope::DrawingWorkScope(double most) : before_(limitOfThread) {
  limitOfThread = std::min(limitOfThread, most);
}

DrawingWorkScope::~DrawingWorkScope() {
  limitOfThread = before_;
}

}  // namespace rasterkit::detail
