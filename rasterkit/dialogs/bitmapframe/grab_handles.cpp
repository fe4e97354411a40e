#include <algorithm>
#include <cstdint>

#include <rasterkit/dialogs/bitmapframe/grab_handles.h>

namespace rasterkit {
namespace {

enum class Place { outside, low, inner, high };

/// Where a coordinate lies along one axis of the rectangle.
Place PlaceOf(int at, int low, int high, int side) {
  const int inner = std::min(side / 2, (high - low) / 4);
  // A small rectangle has the rest of its handles around it.
  const int outer = side - inner;
  if (at < low - outer || at > high + outer) return Place::outside;
  if (at <= low + inner) return Place::low;
  return at >= high - inner ? Place::high : Place::inner;
}

}  // namespace

std::vector<RMarkRect> MakeHandles(const TRect& rect, int side) {
  const int before = side / 2, after = side - before;
  std::vector<RMarkRect> handles;
  const auto add = [&](EDragObjectType type, int x, int y) {
    handles.push_back({type, {x - before, y - before, x + after, y + after}});
  };
  add(doLeftTop, rect.Left, rect.Top);
  add(doRightTop, rect.Right, rect.Top);
  add(doLeftBottom, rect.Left, rect.Bottom);
  add(doRightBottom, rect.Right, rect.Bottom);
  const int64_t width = int64_t{rect.Right} - rect.Left, height = int64_t{rect.Bottom} - rect.Top;
  const int middleX = static_cast<int>(rect.Left + width / 2);
  const int middleY = static_cast<int>(rect.Top + height / 2);
  if (width >= 4 * side) {
    add(doTop, middleX, rect.Top);
    add(doBottom, middleX, rect.Bottom);
  }
  if (height >= 4 * side) {
    add(doLeft, rect.Left, middleY);
    add(doRight, rect.Right, middleY);
  }
  return handles;
}

EDragObjectType GrabAt(const TRect& rect, int side, int x, int y) {
  constexpr EDragObjectType kGrabbed[3][3] = {{doLeftTop, doTop, doRightTop},
                                              {doLeft, doNone, doRight},
                                              {doLeftBottom, doBottom, doRightBottom}};
  const Place across = PlaceOf(x, rect.Left, rect.Right, side);
  const Place down = PlaceOf(y, rect.Top, rect.Bottom, side);
  if (across == Place::outside || down == Place::outside) return doNone;
  const auto index = [](Place place) { return static_cast<int>(place) - 1; };
  return kGrabbed[index(down)][index(across)];
}

}  // namespace rasterkit
