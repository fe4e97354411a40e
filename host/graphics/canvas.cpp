#include <algorithm>
#include <utility>
#include <vector>

#include <rasterkit/host/graphics/bitmap.h>
#include <rasterkit/host/graphics/canvas.h>
#include <rasterkit/host/graphics/system_color.h>
#include <rasterkit/host/raster/blit.h>
#include <rasterkit/host/raster/fill.h>
#include <rasterkit/host/raster/stroke.h>

namespace rasterkit {
namespace {

PaintMode ModeOf(const TPen& pen) {
  return pen.Mode == pmXor ? PaintMode::exclusiveOr : PaintMode::copy;
}

// Where a picture ends. Beyond the last coordinate there is nothing that could show it.
int EndOf(int start, int size) {
  return static_cast<int>(std::min<int64_t>(int64_t{start} + size, INT32_MAX));
}

}  // namespace

void TCanvas::FillRect(const TRect& rect) {
  if (Brush.Style == bsClear) return;
  FillRaster(bitmap_->raster_, {rect.Left, rect.Top, rect.Right, rect.Bottom},
             ResolveColor(Brush.Color));
  bitmap_->modified_ = true;
}

void TCanvas::Rectangle(int left, int top, int right, int bottom) {
  if (left > right) std::swap(left, right);
  if (top > bottom) std::swap(top, bottom);
  if (left == right || top == bottom) return;
  if (Pen.Style == psClear) {
    FillRect({left, top, right - 1, bottom - 1});
    return;
  }
  DrawFrame({left, top, right, bottom});
}

// Four strips that do not overlap, so that XOR meets each pixel once, and the brush in what is
// left.
void TCanvas::DrawFrame(const TRect& rect) {
  const int64_t shorter =
      std::min(int64_t{rect.Right} - rect.Left, int64_t{rect.Bottom} - rect.Top);
  const auto width = static_cast<int>(std::min<int64_t>(std::max(Pen.Width, 1), (shorter + 1) / 2));
  const TRect inner{rect.Left + width, rect.Top + width, rect.Right - width, rect.Bottom - width};
  const int lowerTop = std::max(inner.Bottom, inner.Top);
  const int rightLeft = std::max(inner.Right, inner.Left);
  FillRect(inner);
  const TColor color = ResolveColor(Pen.Color);
  const PaintMode mode = ModeOf(Pen);
  PaintRect(bitmap_->raster_, {rect.Left, rect.Top, rect.Right, inner.Top}, color, mode);
  PaintRect(bitmap_->raster_, {rect.Left, lowerTop, rect.Right, rect.Bottom}, color, mode);
  PaintRect(bitmap_->raster_, {rect.Left, inner.Top, inner.Left, lowerTop}, color, mode);
  PaintRect(bitmap_->raster_, {rightLeft, inner.Top, rect.Right, lowerTop}, color, mode);
  bitmap_->modified_ = true;
}

void TCanvas::Polyline(std::span<const TPoint> points) {
  if (Pen.Style == psClear) return;
  std::vector<PixelPoint> pixels;
  for (const TPoint& point : points) pixels.push_back({point.X, point.Y});
  StrokePolyline(bitmap_->raster_, pixels, Pen.Width, ResolveColor(Pen.Color), ModeOf(Pen));
  bitmap_->modified_ = true;
}

void TCanvas::Draw(int x, int y, const TGraphic& graphic) {
  if (!graphic.Empty())
    graphic.DrawTo(*this, {x, y, EndOf(x, graphic.Width()), EndOf(y, graphic.Height())});
}

void TCanvas::StretchDraw(const TRect& rect, const TGraphic& graphic) {
  if (!graphic.Empty()) graphic.DrawTo(*this, rect);
}

void TCanvas::DrawRaster(const TRect& rect, const Raster& raster, std::optional<TColor> key) {
  const PixelRect place{rect.Left, rect.Top, rect.Right, rect.Bottom};
  if (&raster == &bitmap_->raster_) {
    BlitStretched(bitmap_->raster_, place, raster.Clone(), key);
  } else {
    BlitStretched(bitmap_->raster_, place, raster, key);
  }
  bitmap_->modified_ = true;
}

}  // namespace rasterkit
