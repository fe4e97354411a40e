#include <utility>

#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {
namespace {

/// Rectangle of a whole bitmap for the pixel engine, which writes column `Right` too, but not row
/// `Bottom`.
TRect FullRect(const TBitmap& bitmap) {
  return {0, 0, bitmap.Width() - 1, bitmap.Height() - 1};
}

/// Rectangle of a whole bitmap for drawing, with right and bottom exclusive.
TRect WholeRect(const TBitmap& bitmap) {
  return {0, 0, bitmap.Width(), bitmap.Height()};
}

TBlendFunction BlendOf(const TBitmap& source, uint8_t alpha) {
  return {alpha, source.PixelFormat() == pf32bit};
}

/// Uses the target's rectangle twice, so the source is not stretched.
void Transfer(TBitmap& target, TBitmap& source, int32_t threads, TProgressEvent progress,
              TPixelMode mode, int32_t percent, bool useGray, bool last) {
  const TRect full = FullRect(target);
  AssignPartBitmap(&target, &source, full, full, threads, std::move(progress), mode, percent,
                   useGray, last);
}

void LayDrawing(TBitmap& target, TBitmap& drawing, int32_t threads, TProgressEvent progress) {
  if (target.PixelFormat() == pf32bit) {
    target.Canvas().TransparentBlt(WholeRect(target), drawing, WholeRect(drawing), clWhite);
  } else {
    Transfer(target, drawing, threads, std::move(progress), pmOverwrite, 0, false, false);
  }
}

}  // namespace

void DrawBlendedBitmap(TBitmap* bitmap, TCanvas& canvas, const TRect& rect, uint8_t alpha) {
  if (bitmap == nullptr) return;
  canvas.AlphaBlend(rect, *bitmap, WholeRect(*bitmap), BlendOf(*bitmap, alpha));
}

void CombineBitmapsTransparent(TBitmap* target, TBitmap* source, uint8_t alpha,
                               int32_t ThreadsCount, TProgressEvent AProgress) {
  if (target == nullptr || source == nullptr) return;
  if (source->PixelFormat() == pf1bit && alpha == 255) {
    return LayDrawing(*target, *source, ThreadsCount, std::move(AProgress));
  }
  target->Canvas().AlphaBlend(WholeRect(*target), *source, WholeRect(*source),
                              BlendOf(*source, alpha));
}

void CombineGeoResTrans(TBitmap* target, TBitmap* source, int32_t percent, bool useGray,
                        int32_t ThreadsCount, TProgressEvent AProgress) {
  if (target == nullptr || source == nullptr) return;
  Transfer(*target, *source, ThreadsCount, std::move(AProgress), pmTransparent, percent, useGray,
           true);
}

void CombineGeoResFix(TBitmap* target, TBitmap* source, int32_t percent, bool useGray,
                      int32_t ThreadsCount, TProgressEvent AProgress) {
  if (target == nullptr || source == nullptr) return;
  Transfer(*target, *source, ThreadsCount, std::move(AProgress), pmShadow, percent, useGray, true);
}

}  // namespace rasterkit
