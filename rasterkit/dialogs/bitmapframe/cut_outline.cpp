#include <algorithm>

#include <rasterkit/dialogs/bitmapframe/cut_outline.h>

namespace rasterkit {

std::vector<TRect> OutlineStrips(const TRect& rect, int width, const TRect& client) {
  const int before = width / 2, after = width - before;
  const TRect outer{rect.Left - before, rect.Top - before, rect.Right + after, rect.Bottom + after};
  // Empty if the sides meet.
  const int innerLeft = rect.Left + after, innerTop = rect.Top + after;
  const int innerRight = std::max(rect.Right - before, innerLeft);
  const int innerBottom = std::max(rect.Bottom - before, innerTop);
  const TRect strips[] = {{outer.Left, outer.Top, outer.Right, innerTop},
                          {outer.Left, innerBottom, outer.Right, outer.Bottom},
                          {outer.Left, innerTop, innerLeft, innerBottom},
                          {innerRight, innerTop, outer.Right, innerBottom}};
  std::vector<TRect> seen;
  for (const TRect& strip : strips) {
    const TRect clipped{std::max(strip.Left, client.Left), std::max(strip.Top, client.Top),
                        std::min(strip.Right, client.Right), std::min(strip.Bottom, client.Bottom)};
    if (clipped.Left < clipped.Right && clipped.Top < clipped.Bottom) seen.push_back(clipped);
  }
  return seen;
}

}  // namespace rasterkit
