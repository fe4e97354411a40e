#include <algorithm>
#include <new>

#include <rasterkit/drawing/ink/clip_area.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>

namespace rasterkit::detail {
namespace {

using Region = std::shared_ptr<cairo_region_t>;

Region Own(cairo_region_t* region) {
  if (cairo_region_status(region) != CAIRO_STATUS_SUCCESS) throw std::bad_alloc();
  return {region, cairo_region_destroy};
}

Region Copy(const Region& region) {
  return Own(cairo_region_copy(region.get()));
}

cairo_rectangle_int_t CairoRect(const PixelRect& r) {
  return {r.left, r.top, r.right - r.left, r.bottom - r.top};
}

/// Returns round(a b / 255).
uint8_t Product(int a, int b) {
  return static_cast<uint8_t>((a * b + 127) / 255);
}

uint8_t Combine(int a, int b, RegionMode mode) {
  switch (mode) {
    case RegionMode::unite:
      return static_cast<uint8_t>(a + b - Product(a, b));
    case RegionMode::exclusiveOr:
      return static_cast<uint8_t>(Product(a, 255 - b) + Product(b, 255 - a));
    case RegionMode::difference:
      return Product(a, 255 - b);
    default:
      return Product(a, b);
  }
}

PixelRect BoxOf(const cairo_rectangle_int_t& r) {
  return {r.x, r.y, r.x + r.width, r.y + r.height};
}

/// More rectangles take more memory and time than a mask. A hostile file can describe a
/// checkerboard region in a few bytes, repeatedly.
constexpr int kMostRects = 4096;

/// Returns a region as a mask, multiplied by `limit` if it is not null.
std::shared_ptr<const CoverageMask> MaskOf(const cairo_region_t* region,
                                           const CoverageMask* limit) {
  cairo_rectangle_int_t r;
  cairo_region_get_extents(region, &r);
  auto mask = std::make_shared<CoverageMask>(BoxOf(r));
  const int left = r.x;
  for (int i = 0; i < cairo_region_num_rectangles(region); ++i) {
    cairo_region_get_rectangle(region, i, &r);
    for (int y = r.y; y < r.y + r.height; ++y) {
      uint8_t* row = mask->Row(y) + (r.x - left);
      if (limit) {
        std::copy_n(limit->Row(y) + (r.x - limit->Box().left), r.width, row);
      } else {
        std::fill_n(row, r.width, 255);
      }
    }
  }
  return mask;
}

PixelRect UnionBox(const PixelRect& a, const PixelRect& b) {
  if (IsEmpty(a)) return b;
  if (IsEmpty(b)) return a;
  return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
          std::max(a.bottom, b.bottom)};
}

}  // namespace

ClipArea::Pointer ClipArea::OfRegion(cairo_region_t* region,
                                     std::shared_ptr<const CoverageMask> mask) {
  const Region owned = Own(region);
  const int count = cairo_region_num_rectangles(region);
  if (count > kMostRects) return OfMask(MaskOf(region, mask.get()));
  const std::shared_ptr<ClipArea> area(new ClipArea);
  area->region_ = owned;
  area->mask_ = std::move(mask);
  area->rects_.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    cairo_rectangle_int_t r;
    cairo_region_get_rectangle(region, i, &r);
    area->rects_.push_back(BoxOf(r));
    area->bounds_ = UnionBox(area->bounds_, area->rects_.back());
  }
  return area;
}

ClipArea::Pointer ClipArea::OfRects(std::span<const PixelRect> rects, const PixelRect& frame) {
  std::vector<cairo_rectangle_int_t> inside;
  for (const PixelRect& rect : rects) {
    const PixelRect cut = Intersection(rect, frame);
    if (!IsEmpty(cut)) inside.push_back(CairoRect(cut));
  }
  return OfRegion(cairo_region_create_rectangles(inside.data(), static_cast<int>(inside.size())),
                  nullptr);
}

ClipArea::Pointer ClipArea::OfPath(const DrawingPath& path, PolygonFill fill,
                                   const PixelRect& frame) {
  const auto rect = path.AsRect();
  const auto bounds = path.Bounds();
  if (rect) {
    const PixelRect box = RoundedBox(*rect);
    return OfRects({&box, 1}, frame);
  }
  const PixelRect box = bounds ? Intersection(CoveringBox(*bounds, 1), frame) : PixelRect{};
  if (IsEmpty(box)) return OfRects({}, frame);
  auto mask = std::make_shared<CoverageMask>(box);
  mask->Draw([&](cairo_t* cairo) {
    path.EmitTo(cairo, {.grid = EdgeGrid::fill});
    cairo_set_fill_rule(
        cairo, fill == PolygonFill::winding ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(cairo);
  });
  return OfMask(std::move(mask));
}

ClipArea::Pointer ClipArea::OfMask(std::shared_ptr<const CoverageMask> mask) {
  const cairo_rectangle_int_t whole = CairoRect(mask->Box());
  return OfRegion(cairo_region_create_rectangle(&whole), std::move(mask));
}

ClipArea::Pointer ClipArea::Combined(const Pointer& current, const Pointer& other,
                                     RegionMode mode) {
  const ClipArea &a = *current, &b = *other;
  if (mode == RegionMode::copy) return other;
  if (mode == RegionMode::intersection && !(a.mask_ && b.mask_)) {
    const Region region = Copy(a.region_);
    cairo_region_intersect(region.get(), b.region_.get());
    return OfRegion(cairo_region_reference(region.get()), a.mask_ ? a.mask_ : b.mask_);
  }
  if (b.mask_ || (a.mask_ && mode != RegionMode::difference)) return MixedMasks(a, b, mode);
  const Region region = Copy(a.region_);
  if (mode == RegionMode::unite) cairo_region_union(region.get(), b.region_.get());
  if (mode == RegionMode::exclusiveOr) cairo_region_xor(region.get(), b.region_.get());
  if (mode == RegionMode::difference) cairo_region_subtract(region.get(), b.region_.get());
  return OfRegion(cairo_region_reference(region.get()), a.mask_);
}

ClipArea::Pointer ClipArea::MixedMasks(const ClipArea& a, const ClipArea& b, RegionMode mode) {
  PixelRect box = a.bounds_;
  if (mode == RegionMode::intersection) box = Intersection(box, b.bounds_);
  if (mode == RegionMode::unite || mode == RegionMode::exclusiveOr) box = UnionBox(box, b.bounds_);
  if (IsEmpty(box)) return OfRects({}, box);
  auto mask = std::make_shared<CoverageMask>(box);
  const int width = box.right - box.left;
  std::vector<uint8_t> other(static_cast<size_t>(width));
  for (int y = box.top; y < box.bottom; ++y) {
    uint8_t* row = mask->Row(y);
    a.CopyCoverage(y, box.left, width, row);
    b.CopyCoverage(y, box.left, width, other.data());
    for (int i = 0; i < width; ++i) row[i] = Combine(row[i], other[static_cast<size_t>(i)], mode);
  }
  return OfMask(std::move(mask));
}

ClipArea::Pointer ClipArea::Moved(int dx, int dy, const PixelRect& frame) const {
  std::shared_ptr<CoverageMask> mask;
  if (mask_) {
    const PixelRect& from = mask_->Box();
    const PixelRect to =
        Intersection({from.left + dx, from.top + dy, from.right + dx, from.bottom + dy}, frame);
    if (IsEmpty(to)) return OfRects({}, frame);
    mask = std::make_shared<CoverageMask>(to);
    for (int y = to.top; y < to.bottom; ++y) {
      const uint8_t* row = mask_->Row(y - dy) + (to.left - dx - from.left);
      std::copy_n(row, to.right - to.left, mask->Row(y));
    }
  }
  const Region region = Copy(region_);
  cairo_region_translate(region.get(), dx, dy);
  const cairo_rectangle_int_t whole = CairoRect(mask ? mask->Box() : frame);
  cairo_region_intersect_rectangle(region.get(), &whole);
  return OfRegion(cairo_region_reference(region.get()), std::move(mask));
}

std::span<const PixelRect> ClipArea::RectsFrom(int top) const {
  const auto first = std::partition_point(rects_.begin(), rects_.end(),
                                          [&](const PixelRect& r) { return r.bottom <= top; });
  return {first, rects_.end()};
}

std::span<const PixelRect> ClipArea::RectsOfRow(int y) const {
  const auto from = RectsFrom(y);
  const auto last = std::partition_point(from.begin(), from.end(),
                                         [&](const PixelRect& r) { return r.top <= y; });
  return {from.begin(), last};
}

void ClipArea::Limit(int y, int left, int count, uint8_t* coverage) const {
  if (!mask_) return;
  const uint8_t* limits = mask_->Row(y) + (left - mask_->Box().left);
  for (int i = 0; i < count; ++i) {
    if (limits[i] != 255) coverage[i] = Product(coverage[i], limits[i]);
  }
}

uint8_t ClipArea::At(int x, int y) const {
  if (!cairo_region_contains_point(region_.get(), x, y)) return 0;
  return mask_ ? mask_->Row(y)[x - mask_->Box().left] : 255;
}

bool ClipArea::Contains(int x, int y) const {
  return At(x, y) > 127;
}

void ClipArea::CopyCoverage(int y, int left, int count, uint8_t* coverage) const {
  std::fill_n(coverage, count, 0);
  for (const PixelRect& rect : RectsOfRow(y)) {
    const int from = std::max(rect.left, left), to = std::min(rect.right, left + count);
    if (from >= to) continue;
    std::fill_n(coverage + (from - left), to - from, 255);
    Limit(y, from, to - from, coverage + (from - left));
  }
}

}  // namespace rasterkit::detail
