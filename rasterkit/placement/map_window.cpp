#include <algorithm>
#include <cmath>
#include <limits>

#include <fmt/format.h>

#include <rasterkit/placement/map_window.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

struct Edges {
  double first = std::numeric_limits<double>::infinity();
  double last = -std::numeric_limits<double>::infinity();

  void Include(double place) {
    first = std::min(first, place);
    last = std::max(last, place);
  }
};

struct Run {
  int first = 0, count = 0;
};

/// Pixels between two edges, which are counted from the corner of the first pixel.
Run PixelsBetween(const Edges& edges, int size) {
  // The rounding mode of the process is to nearest, halves to even.
  double first = std::nearbyint(edges.first), last = std::nearbyint(edges.last);
  if (last == first) {
    first = std::floor((edges.first + edges.last) / 2);
    last = first + 1;
  }
  if (!(first >= 0 && last <= size)) return {};
  return {static_cast<int>(first), static_cast<int>(last - first)};
}

}  // namespace

PixelWindow WindowOfMap(MapPoint least, MapPoint greatest, const Affine& position, int width,
                        int height) {
  if (!(least.x < greatest.x && least.y < greatest.y)) {
    throw RangeError("the rectangle on the map has no area");
  }
  constexpr double kHalf = 0.5;
  Edges columns, rows;
  for (const double x : {least.x, greatest.x}) {
    for (const double y : {least.y, greatest.y}) {
      const std::optional<MapPoint> pixel = position.Back({x, y});
      if (!pixel) throw RangeError("the position on the map cannot be inverted");
      columns.Include(pixel->x + kHalf);
      rows.Include(pixel->y + kHalf);
    }
  }
  const Run across = PixelsBetween(columns, width), down = PixelsBetween(rows, height);
  if (across.count == 0 || down.count == 0) {
    throw RangeError(
        fmt::format("the rectangle on the map is not inside the picture: it goes from column "
                    "{:.10g} to {:.10g} "
                    "and from row {:.10g} to {:.10g} of {} x {} pixels",
                    columns.first, columns.last, rows.first, rows.last, width, height));
  }
  return {across.first, down.first, across.count, down.count};
}

}  // namespace rasterkit
