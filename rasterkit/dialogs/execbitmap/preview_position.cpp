#include <algorithm>
#include <cstdint>

#include <rasterkit/dialogs/execbitmap/preview_position.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

int Excess(int bitmap, int box) {
  return std::max(bitmap - std::max(box, 0), 0);
}

int Moved(int offset, int64_t by, int most) {
  return static_cast<int>(std::clamp<int64_t>(offset + by, 0, most));
}

}  // namespace

void PreviewPosition::InitBmpPos(int bitmapWidth, int bitmapHeight, int boxWidth, int boxHeight) {
  bitmap_ = {bitmapWidth, bitmapHeight};
  box_ = {std::max(boxWidth, 0), std::max(boxHeight, 0)};
  maxOffset_ = {Excess(bitmapWidth, boxWidth), Excess(bitmapHeight, boxHeight)};
  offset_ = {static_cast<int>(Round(maxOffset_.X / 2.0)),
             static_cast<int>(Round(maxOffset_.Y / 2.0))};
}

bool PreviewPosition::Drag(TPoint mouse) {
  const TPoint from = mouse_;
  mouse_ = mouse;
  return Scroll(int64_t{from.X} - mouse.X, int64_t{from.Y} - mouse.Y);
}

bool PreviewPosition::Scroll(int64_t right, int64_t down) {
  const TPoint before = offset_;
  offset_ = {Moved(offset_.X, right, maxOffset_.X), Moved(offset_.Y, down, maxOffset_.Y)};
  return offset_.X != before.X || offset_.Y != before.Y;
}

TRect PreviewPosition::Visible() const {
  return {offset_.X, offset_.Y, std::min(offset_.X + box_.X, bitmap_.X),
          std::min(offset_.Y + box_.Y, bitmap_.Y)};
}

}  // namespace rasterkit
