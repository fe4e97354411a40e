#include <algorithm>
#include <cmath>
#include <limits>

#include <fmt/format.h>

#include <rasterkit/placement/map_window.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

void Include(PixelSpan& span, double place) {
  span.first = std::min(span.first, place);
  span.last = std::max(span.last, place);
}

}  // namespace

std::optional<PixelRun> WholePixelsOf(const PixelSpan& span, int size) {
  // The rounding mode of the process is to nearest, halves to even.
  double first = std::nearbyint(span.first), last = std::nearbyint(span.last);
  if (last == first) {
    first = std::floor((span.first + span.last) / 2);
    last = first + 1;
  }
  if (!(first >= 0 && first < last && last <= size)) return std::nullopt;
  return PixelRun{static_cast<int>(first), static_cast<int>(last - first)};
}

MapSpans SpansOfMap(MapPoint least, MapPoint greatest, const Affine& position) {
  if (!(least.x < greatest.x && least.y < greatest.y)) {
    throw RangeError("the rectangle on the map has no area");
  }
  constexpr double kHalf = 0.5, kFar = std::numeric_limits<double>::infinity();
  MapSpans spans{{kFar, -kFar}, {kFar, -kFar}};
  for (const double x : {least.x, greatest.x}) {
    for (const double y : {least.y, greatest.y}) {
      const std::optional<MapPoint> pixel = position.Back({x, y});
      if (!pixel) throw RangeError("the position on the map cannot be inverted");
      Include(spans.columns, pixel->x + kHalf);
      Include(spans.rows, pixel->y + kHalf);
    }
  }
  return spans;
}

PixelWindow WindowOfMap(MapPoint least, MapPoint greatest, const Affine& position, int width,
                        int height) {
  const auto [columns, rows] = SpansOfMap(least, greatest, position);
  const auto across = WholePixelsOf(columns, width), down = WholePixelsOf(rows, height);
  if (!across || !down) {
    throw RangeError(
        fmt::format("the rectangle on the map is not inside the picture: it goes from column "
                    "{:.10g} to {:.10g} "
                    "and from row {:.10g} to {:.10g} of {} x {} pixels",
                    columns.first, columns.last, rows.first, rows.last, width, height));
  }
  return {across->first, down->first, across->count, down->count};
}

}  // namespace rasterkit
