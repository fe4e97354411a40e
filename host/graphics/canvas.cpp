#include <algorithm>
#include <utility>

#include <rasterkit/host/graphics/bitmap.h>
#include <rasterkit/host/graphics/canvas.h>
#include <rasterkit/host/graphics/system_color.h>
#include <rasterkit/host/raster/blit.h>
#include <rasterkit/host/raster/fill.h>

namespace rasterkit {

void TCanvas::FillRect(const TRect& rect) {
  if (Brush.Style == bsClear) return;
  FillRaster(bitmap_->raster_, {rect.Left, rect.Top, rect.Right, rect.Bottom},
             ResolveColor(Brush.Color));
  bitmap_->modified_ = true;
}

void TCanvas::Rectangle(int left, int top, int right, int bottom) {
  if (left > right) std::swap(left, right);
  if (top > bottom) std::swap(top, bottom);
  if (Pen.Style == psClear) {
    FillRect({left, top, right - 1, bottom - 1});
    return;
  }
  FillRect({left, top, right, bottom});
}

void TCanvas::Draw(int x, int y, const TGraphic& graphic) {
  if (!graphic.Empty()) graphic.DrawTo(*this, x, y, graphic.Width(), graphic.Height());
}

void TCanvas::StretchDraw(const TRect& rect, const TGraphic& graphic) {
  if (graphic.Empty()) return;
  graphic.DrawTo(*this, rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top);
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
