#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include <rasterkit/drawing/ink/drawing_cost.h>
#include <rasterkit/drawing/ink/painter.h>
#include <rasterkit/drawing/ink/pixel_boxes.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

/// A clip of more rectangles slows cairo down, as it visits all of them for every line.
constexpr size_t kDirectRects = 64;

/// Returns the result of an operation on one color, if the operation ignores the picture.
uint32_t ConstantResult(TernaryCode code, uint32_t pixel) {
  uint32_t result = 0;
  const uint32_t none = 0;
  TernaryRow(code, &pixel, &none, &result, 1);
  return result | 0xFF000000;
}

/// The ink and operation with the same effect that are cheapest to paint.
struct Task {
  Ink ink;
  TernaryCode code;

  Task(Ink i, TernaryCode c) : ink(std::move(i)), code(c) {
    if (ink.tile || NeedsPicture(code) || NeedsSource(code)) return;
    ink.pixel = ConstantResult(code, ink.pixel);
    code = kCopyBrush;
  }
  bool DoesNothing() const { return code == 0xAA; }
};

/// Cuts a line to the part within `reach` of the box; returns false if nothing is left.
bool CutLine(PointD& from, PointD& to, const PixelRect& box, double reach) {
  const double dx = to.x - from.x, dy = to.y - from.y;
  double first = 0, last = 1;
  const auto cut = [&](double start, double step, double low, double high) {
    if (step == 0) return start >= low && start <= high;
    const double a = (low - start) / step, b = (high - start) / step;
    first = std::max(first, std::min(a, b));
    last = std::min(last, std::max(a, b));
    return first <= last;
  };
  if (!cut(from.x, dx, box.left - reach, box.right + reach)) return false;
  if (!cut(from.y, dy, box.top - reach, box.bottom + reach)) return false;
  const PointD start = from;
  if (first > 0) from = {start.x + first * dx, start.y + first * dy};
  if (last < 1) to = {start.x + last * dx, start.y + last * dy};
  return true;
}

}  // namespace

Painter::Painter(Raster& target, const PixelRect& frame, DrawingWork& work)
    : target_(target), frame_(frame), work_(work) {
  const int width = frame.right - frame.left, height = frame.bottom - frame.top;
  if (width > kMaxSide || height > kMaxSide) {
    throw LimitError("metafile: at most 32767 x 32767 pixels can be drawn at a time");
  }
  clip_ = ClipArea::OfRects({&frame, 1}, frame);
  if (width <= 0 || height <= 0) return;
  surface_.reset(cairo_image_surface_create_for_data(
      target.Row(frame.top) + static_cast<size_t>(frame.left) * 4, CAIRO_FORMAT_RGB24, width,
      height, static_cast<int>(target.Stride())));
  cairo_surface_set_device_offset(surface_.get(), -frame.left, -frame.top);
  MakeContext();
}

Painter::~Painter() {
  if (surface_) cairo_surface_finish(surface_.get());
  for (int y = frame_.top; y < frame_.bottom; ++y) {
    uint32_t* row = TargetRow(y);
    for (int x = frame_.left; x < frame_.right; ++x) row[x] |= 0xFF000000;
  }
}

void Painter::MakeContext() {
  cairo_.reset(cairo_create(surface_.get()));
  isClipSet_ = false;
  color_ = 0;
  styleSerial_ = 0;
}

void Painter::SetClip(ClipArea::Pointer clip) {
  if (clip == clip_) return;
  clip_ = std::move(clip);
  isClipSet_ = false;
}

cairo_t* Painter::Direct() {
  // A cairo context that has failed stays unusable; create a new one.
  if (cairo_status(cairo_.get()) != CAIRO_STATUS_SUCCESS) MakeContext();
  if (!isClipSet_) {
    cairo_reset_clip(cairo_.get());
    for (const PixelRect& r : clip_->Rects()) {
      cairo_rectangle(cairo_.get(), r.left, r.top, r.right - r.left, r.bottom - r.top);
    }
    cairo_clip(cairo_.get());
    isClipSet_ = true;
  }
  return cairo_.get();
}

void Painter::SetDirectColor(uint32_t pixel) {
  if (pixel == color_) return;
  cairo_set_source_rgb(cairo_.get(), (pixel >> 16 & 255) / 255.0, (pixel >> 8 & 255) / 255.0,
                       (pixel & 255) / 255.0);
  color_ = pixel;
}

bool Painter::IsDirect(const Ink& ink, TernaryCode code) const {
  return code == kCopyBrush && !ink.tile && !clip_->HasMask() &&
         clip_->Rects().size() <= kDirectRects;
}

void Painter::Draw(const PixelRect& wanted, const Ink& ink, TernaryCode code,
                   const std::function<void(cairo_t*)>& draw) {
  DrawAtCost(wanted, ink, code, PixelsOf(Intersection(wanted, clip_->Bounds())) * kPlainPixel,
             draw);
}

void Painter::DrawAtCost(const PixelRect& wanted, const Ink& ink, TernaryCode code,
                         double directCost, const std::function<void(cairo_t*)>& draw) {
  const Task task(ink, code);
  const PixelRect box = Intersection(wanted, clip_->Bounds());
  if (IsEmpty(box) || task.DoesNothing()) return;
  if (IsDirect(task.ink, task.code)) {
    work_.Charge(directCost);
    cairo_t* cairo = Direct();
    SetDirectColor(task.ink.pixel);
    draw(cairo);
    return;
  }
  work_.Charge(directCost + PixelsOf(box));
  CoverageMask shape(box);
  shape.Draw(draw);
  Compose(box, {.ink = task.ink, .code = task.code, .shape = &shape});
}

void Painter::Fill(const DrawingPath& path, PolygonFill fill, const Ink& ink, TernaryCode code) {
  const auto bounds = path.Bounds();
  if (!bounds) return;
  if (const auto rect = path.AsRect()) {
    FillBox(SeenBox(*rect), ink, code);
    return;
  }
  const PixelRect box = CoveringBox(*bounds, 1);
  const PixelRect seen = Intersection(box, clip_->Bounds());
  const double cost = OutlineCost(path, seen) + PixelsOf(seen) * kPlainPixel;
  DrawAtCost(box, ink, code, cost, [&](cairo_t* cairo) {
    path.EmitTo(cairo, {.grid = EdgeGrid::fill});
    cairo_set_fill_rule(
        cairo, fill == PolygonFill::winding ? CAIRO_FILL_RULE_WINDING : CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(cairo);
  });
}

void Painter::Stroke(const DrawingPath& path, const StrokeStyle& style, const Ink& ink,
                     TernaryCode code) {
  const auto bounds = path.Bounds();
  if (!bounds) return;
  DrawAtCost(CoveringBox(*bounds, style.Reach()), ink, code,
             StrokeCost(path, style, clip_->Bounds()),
             [&](cairo_t* cairo) { StrokePathWith(cairo, path, style); });
  styleSerial_ = 0;
}

void Painter::StrokeLine(PointD from, PointD to, const StrokeStyle& style, const Ink& ink,
                         TernaryCode code) {
  FitLine(from, to, style.fit);
  const double reach = style.Reach();
  const PixelRect& area = clip_->Bounds();
  // Cutting a line shifts its dashes, so dashed lines are only cut if they are far too long.
  const double margin = style.dashes.empty() ? reach : std::max(reach, 65536.0);
  if (!CutLine(from, to, area, margin)) return;
  const PixelRect box = CoveringBox(Normalized({from.x, from.y, to.x, to.y}), reach);
  DrawAtCost(box, ink, code, StrokeCost(from, to, style, area), [&](cairo_t* cairo) {
    if (cairo != cairo_.get() || style.serial == 0 || style.serial != styleSerial_) {
      ApplyStroke(cairo, style);
    }
    if (cairo == cairo_.get()) styleSerial_ = style.serial;
    cairo_move_to(cairo, from.x, from.y);
    cairo_line_to(cairo, to.x, to.y);
    if (!style.dashes.empty() &&
        DashesAlong(style, std::hypot(to.x - from.x, to.y - from.y)) == 0) {
      cairo_set_dash(cairo, nullptr, 0, 0);
      styleSerial_ = 0;
    }
    StrokeApplied(cairo, style);
  });
}

void Painter::FillBox(const PixelRect& wanted, const Ink& ink, TernaryCode code) {
  const Task task(ink, code);
  const PixelRect box = Intersection(wanted, clip_->Bounds());
  if (IsEmpty(box) || task.DoesNothing()) return;
  Compose(box, {.ink = task.ink, .code = task.code});
}

void Painter::FillMask(const CoverageMask& shape, const Ink& ink, TernaryCode code) {
  const Task task(ink, code);
  const PixelRect box = Intersection(shape.Box(), clip_->Bounds());
  if (IsEmpty(box) || task.DoesNothing()) return;
  Compose(box, {.ink = task.ink, .code = task.code, .shape = &shape});
}

void Painter::PutSource(const PixelRect& wanted, const Raster& source, const Ink& ink,
                        TernaryCode code, const CoverageMask* shape) {
  const PixelRect box = Intersection(wanted, clip_->Bounds());
  if (IsEmpty(box) || code == 0xAA) return;
  Compose(box, {.ink = ink,
                .code = code,
                .shape = shape,
                .source = &source,
                .sourceOrigin = {wanted.left, wanted.top}});
}

uint32_t* Painter::TargetRow(int y) {
  return reinterpret_cast<uint32_t*>(target_.Row(y));
}

const uint32_t* Painter::PictureRow(int y) const {
  return reinterpret_cast<const uint32_t*>(target_.Row(y));
}

uint32_t Painter::Pixel(int x, int y) const {
  return PictureRow(y)[x];
}

void Painter::Compose(const PixelRect& box, const Layer& layer) {
  work_.Charge(PixelsOf(box) * (IsPlain(layer) ? kPlainPixel : kComposedPixel));
  cairo_surface_flush(surface_.get());
  const auto width = static_cast<size_t>(box.right - box.left);
  if (brushRow_.size() < width) {
    brushRow_.resize(width);
    sourceRow_.resize(width);
    resultRow_.resize(width);
    coverageRow_.resize(width);
  }
  double rows = 0;
  for (const PixelRect& rect : clip_->RectsFrom(box.top)) {
    if (rect.top >= box.bottom) break;
    const PixelRect part = Intersection(rect, box);
    rows += IsEmpty(part) ? 1 : part.bottom - part.top;
    if (!IsEmpty(part)) ComposeRect(part, layer);
  }
  cairo_surface_mark_dirty(surface_.get());
  work_.Charge(rows * kRegionRect);
}

bool Painter::IsPlain(const Layer& layer) const {
  return layer.shape == nullptr && layer.code == kCopyBrush && !layer.ink.tile &&
         !clip_->HasMask() && layer.source == nullptr;
}

void Painter::ComposeRect(const PixelRect& box, const Layer& layer) {
  const int count = box.right - box.left;
  const bool isPlain = IsPlain(layer);
  for (int y = box.top; y < box.bottom; ++y) {
    if (isPlain) {
      std::fill_n(TargetRow(y) + box.left, count, layer.ink.pixel);
    } else {
      ComposeRow(y, box.left, count, layer);
    }
  }
}

void Painter::ComposeRow(int y, int left, int count, const Layer& layer) {
  uint8_t* coverage = coverageRow_.data();
  uint32_t* picture = TargetRow(y) + left;
  if (layer.shape) {
    std::copy_n(layer.shape->Row(y) + (left - layer.shape->Box().left), count, coverage);
  } else {
    std::fill_n(coverage, count, 255);
  }
  clip_->Limit(y, left, count, coverage);
  if (NeedsBrush(layer.code)) InkRow(layer.ink, left, y, count, brushRow_.data(), coverage);
  if (layer.source) {
    std::memcpy(sourceRow_.data(),
                layer.source->Row(y - layer.sourceOrigin.y) +
                    static_cast<size_t>(left - layer.sourceOrigin.x) * 4,
                static_cast<size_t>(count) * 4);
    for (int i = 0; i < count; ++i) {
      const int alpha = static_cast<int>(sourceRow_[static_cast<size_t>(i)] >> 24);
      if (alpha != 255) coverage[i] = static_cast<uint8_t>((coverage[i] * alpha + 127) / 255);
    }
  }
  std::copy_n(picture, count, resultRow_.data());
  TernaryRow(layer.code, brushRow_.data(), sourceRow_.data(), resultRow_.data(), count);
  MixRow(resultRow_.data(), coverage, picture, count);
}

}  // namespace rasterkit::detail
