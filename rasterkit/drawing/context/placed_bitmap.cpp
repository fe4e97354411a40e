#include <algorithm>
#include <cmath>
#include <cstring>

#include <rasterkit/drawing/context/placed_bitmap.h>
#include <rasterkit/drawing/context/slanted_bitmap.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/cut_out.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/raster/stretch/halftone.h>

namespace rasterkit::detail {
namespace {

/// One direction of an upright bitmap: target pixels from `start` to `end`, in either order, show
/// `from` to `to` of the source.
struct Axis {
  int start, end;
  double from, to;

  bool IsEmpty() const { return start == end || from == to; }
  int First() const { return std::min(start, end); }
  int Last() const { return std::max(start, end); }
  /// Returns the source pixel under the center of the target pixel `at`.
  int SourceOf(int at) const {
    const double part = (at + 0.5 - start) / (static_cast<double>(end) - start);
    return PixelNumber(std::floor(from + part * (to - from)));
  }
  bool Shrinks() const { return std::abs(to - from) > std::abs(static_cast<double>(end) - start); }
};

/// Rounds the edges to pixels; at least one pixel.
Axis AxisOf(double start, double end, double from, double to) {
  const RectD rect{start, 0, end, 0};
  const PixelRect box = SeenBox(rect);
  return start <= end ? Axis{box.left, box.right, from, to} : Axis{box.right, box.left, from, to};
}

struct Upright {
  Axis across, down;
  PixelRect box;  ///< the visible part
};

Raster BlankRaster(const PixelRect& box) {
  Raster raster(pf32bit, box.right - box.left, box.bottom - box.top);
  for (int y = 0; y < raster.Height(); ++y) std::memset(raster.Row(y), 0, raster.Stride());
  return raster;
}

/// Returns the source columns of the box's pixels; -1 for none.
std::vector<int> Columns(const Axis& axis, int first, int last, int sourceSize) {
  std::vector<int> columns;
  columns.reserve(static_cast<size_t>(last - first));
  for (int at = first; at < last; ++at) {
    const int column = axis.SourceOf(at);
    columns.push_back(column >= 0 && column < sourceSize ? column : -1);
  }
  return columns;
}

Raster Nearest(const Raster& bitmap, const Upright& place, bool hasAlpha) {
  Raster pixels = BlankRaster(place.box);
  const std::vector<int> columns =
      Columns(place.across, place.box.left, place.box.right, bitmap.Width());
  const PixelTable table = MakePixelTable(bitmap.palette);
  std::vector<RGBArec> row(static_cast<size_t>(bitmap.Width()));
  int loaded = -1;
  for (int y = 0; y < pixels.Height(); ++y) {
    const int from = place.down.SourceOf(place.box.top + y);
    if (from < 0 || from >= bitmap.Height()) continue;
    if (from != loaded) {
      RowTo32(bitmap.Row(from), bitmap.Format(), bitmap.Width(), table, row.data());
      loaded = from;
    }
    auto* to = reinterpret_cast<RGBArec*>(pixels.Row(y));
    for (size_t x = 0; x < columns.size(); ++x) {
      if (columns[x] < 0) continue;
      to[x] = row[static_cast<size_t>(columns[x])];
      if (!hasAlpha) to[x].a = 255;
    }
  }
  return pixels;
}

/// Returns the part as pixels if it has whole pixels inside the bitmap.
std::optional<PixelRect> WholePixels(const Raster& bitmap, const RectD& part) {
  const RectD r = Normalized(part);
  const PixelRect box = RoundedBox(r);
  const auto near = [](double a, int b) { return std::abs(a - b) < 1e-3; };
  if (!near(r.left, box.left) || !near(r.top, box.top) || !near(r.right, box.right) ||
      !near(r.bottom, box.bottom)) {
    return std::nullopt;
  }
  if (box.left < 0 || box.top < 0 || box.right > bitmap.Width() || box.bottom > bitmap.Height()) {
    return std::nullopt;
  }
  return box;
}

/// Returns the means of the covered areas. The part must have whole pixels.
Raster Means(const Raster& bitmap, const PixelRect& part, const Upright& place, bool hasAlpha) {
  const bool isWhole = part.left == 0 && part.top == 0 && part.right == bitmap.Width() &&
                       part.bottom == bitmap.Height();
  Raster cut;
  const Raster* source = &bitmap;
  if (!isWhole) {
    cut = CutOut(bitmap, part);
    source = &cut;
  }
  if (source->Format() == pf32bit && !hasAlpha) {
    // Undefined alpha must not be used as a weight.
    cut = ConvertRaster(*source, pf24bit);
    source = &cut;
  }
  Raster pixels = BlankRaster(place.box);
  PixelRect to{place.across.start - place.box.left, place.down.start - place.box.top,
               place.across.end - place.box.left, place.down.end - place.box.top};
  if (place.across.from > place.across.to) std::swap(to.left, to.right);
  if (place.down.from > place.down.to) std::swap(to.top, to.bottom);
  CopyHalftone(pixels, to, *source);
  return pixels;
}

std::optional<PlacedBitmap> PlaceUpright(const BitmapPart& source, const BitmapCorners& corners,
                                         const PixelRect& visible, Sampling sampling,
                                         bool hasAlpha) {
  const RectD& part = source.part;
  Upright place{AxisOf(corners.topLeft.x, corners.topRight.x, part.left, part.right),
                AxisOf(corners.topLeft.y, corners.bottomLeft.y, part.top, part.bottom),
                {}};
  if (place.across.IsEmpty() || place.down.IsEmpty()) return std::nullopt;
  place.box = Intersection(
      visible, {place.across.First(), place.down.First(), place.across.Last(), place.down.Last()});
  if (IsEmpty(place.box)) return std::nullopt;
  const bool shrinks = place.across.Shrinks() || place.down.Shrinks();
  const bool means = sampling == Sampling::smooth || (shrinks && sampling != Sampling::nearest);
  const auto whole = means ? WholePixels(source.bitmap, part) : std::nullopt;
  return PlacedBitmap{place.box,
                      whole ? Means(source.bitmap, *whole, place, hasAlpha)
                            : Nearest(source.bitmap, place, hasAlpha),
                      std::nullopt};
}

bool IsUsable(const BitmapPart& source, const BitmapCorners& corners) {
  const double numbers[] = {source.part.left,    source.part.top,    source.part.right,
                            source.part.bottom,  corners.topLeft.x,  corners.topLeft.y,
                            corners.topRight.x,  corners.topRight.y, corners.bottomLeft.x,
                            corners.bottomLeft.y};
  return source.bitmap.Width() > 0 && source.bitmap.Height() > 0 &&
         std::all_of(std::begin(numbers), std::end(numbers),
                     [](double n) { return std::isfinite(n) && std::abs(n) < 1e12; });
}

}  // namespace

std::optional<PlacedBitmap> PlaceBitmap(const BitmapPart& source, const BitmapCorners& corners,
                                        const PixelRect& visible, Sampling sampling,
                                        bool hasAlpha) {
  if (!IsUsable(source, corners) || IsEmpty(visible)) return std::nullopt;
  return corners.IsUpright() ? PlaceUpright(source, corners, visible, sampling, hasAlpha)
                             : PlaceSlanted(source, corners, visible, sampling, hasAlpha);
}

}  // namespace rasterkit::detail
