#include <algorithm>
#include <utility>
#include <vector>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/system_color.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/stretch/blit.h>
#include <rasterkit/raster/stretch/halftone.h>
#include <rasterkit/raster/stroke.h>

namespace rasterkit {
namespace {

PaintMode ModeOf(const TPen& pen) {
  return pen.Mode == pmXor ? PaintMode::exclusiveOr : PaintMode::copy;
}

PixelRect ToPixels(const TRect& rect) {
  return {rect.Left, rect.Top, rect.Right, rect.Bottom};
}

// End of a drawn graphic; clamped, because nothing beyond the last coordinate is visible.
int EndOf(int start, int size) {
  return static_cast<int>(std::min<int64_t>(int64_t{start} + size, INT32_MAX));
}

}  // namespace

void TCanvas::FillRect(const TRect& rect) {
  if (Brush.Style == bsClear) return;
  FillRaster(bitmap_->raster_, ToPixels(rect), ResolveColor(Brush.Color));
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

// Draws four strips that do not overlap, so that XOR changes each pixel once, and fills the rest
// with the brush.
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
  if (!graphic.Empty()) {
    graphic.DrawTo(*this, {x, y, EndOf(x, graphic.Width()), EndOf(y, graphic.Height())});
  }
}

void TCanvas::StretchDraw(const TRect& rect, const TGraphic& graphic) {
  if (!graphic.Empty()) graphic.DrawTo(*this, rect);
}

// A bitmap that is drawn onto itself is read from a copy.
template <class Action>
void TCanvas::DrawFrom(const Raster& source, Action draw) {
  if (&source == &bitmap_->raster_) {
    draw(source.Clone());
  } else {
    draw(source);
  }
  bitmap_->modified_ = true;
}

void TCanvas::DrawRaster(const TRect& rect, const Raster& raster, std::optional<TColor> key) {
  const auto blit = StretchMode == smHalftone ? BlitHalftone : BlitStretched;
  DrawFrom(raster, [&](const Raster& rows) { blit(bitmap_->raster_, ToPixels(rect), rows, key); });
}

void TCanvas::AlphaBlend(const TRect& dest, const TBitmap& source, const TRect& src,
                         const TBlendFunction& blend) {
  DrawFrom(source.raster_, [&](const Raster& rows) {
    BlitBlended(bitmap_->raster_, ToPixels(dest), rows, ToPixels(src),
                {blend.SourceConstantAlpha, blend.PerPixelAlpha});
  });
}

void TCanvas::TransparentBlt(const TRect& dest, const TBitmap& source, const TRect& src,
                             TColor key) {
  DrawFrom(source.raster_, [&](const Raster& rows) {
    BlitKeyed(bitmap_->raster_, ToPixels(dest), rows, ToPixels(src), ResolveColor(key));
  });
}

void TCanvas::PlgBlt(const std::array<TPoint, 3>& corners, const TBitmap& source,
                     const TRect& src) {
  std::array<PixelPoint, 3> points;
  for (size_t i = 0; i < 3; ++i) points[i] = {corners[i].X, corners[i].Y};
  DrawFrom(source.raster_, [&](const Raster& rows) {
    BlitParallelogram(bitmap_->raster_, points, rows, ToPixels(src));
  });
}

void TCanvas::CopyStretched(const TRect& dest, const TBitmap& source) {
  DrawFrom(source.raster_, [&](const Raster& rows) {
    if (StretchMode == smHalftone) {
      CopyHalftone(bitmap_->raster_, ToPixels(dest), rows);
    } else {
      BlitCopied(bitmap_->raster_, ToPixels(dest), rows, {0, 0, rows.Width(), rows.Height()});
    }
  });
}

}  // namespace rasterkit
