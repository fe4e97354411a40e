#include <algorithm>
#include <cstring>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/metafiles/play_metafile.h>
#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/raster/stretch/blit.h>

namespace rasterkit {
namespace {

int Moved(int value, int by) {
  // In 64 bits, as coordinates may have any value.
  return static_cast<int>(std::clamp<int64_t>(int64_t{value} - by, INT32_MIN, INT32_MAX));
}

/// Copies the pixels of row y that differ between `before` and `after` to the target, in which both
/// lie at `place`.
void CopyChanges(const Raster& before, const Raster& after, int y, PixelPoint place,
                 Raster& target) {
  const auto differs = [&](int x) {
    return std::memcmp(before.Row(y) + 4 * x, after.Row(y) + 4 * x, 4) != 0;
  };
  for (int x = 0; x < after.Width(); ++x) {
    if (!differs(x)) continue;
    const int start = x;
    while (x < after.Width() && differs(x)) ++x;
    BlitCopied(target, {place.x + start, place.y + y, place.x + x, place.y + y + 1}, after,
               {start, y, x, y + 1});
  }
}

/// The part of the rows that the rectangle covers, which may be flipped; may be empty.
PixelRect CoveredPart(const TRect& rect, const Raster& rows) {
  return ClipRect({std::min(rect.Left, rect.Right), std::min(rect.Top, rect.Bottom),
                   std::max(rect.Left, rect.Right), std::max(rect.Top, rect.Bottom)},
                  rows.Width(), rows.Height());
}

bool IsEmpty(const PixelRect& part) {
  return part.right <= part.left || part.bottom <= part.top;
}

}  // namespace

void TCanvas::DrawMetafile(const TRect& rect, std::span<const uint8_t> metafile) {
  bitmap_->modified_ = true;
  const Raster& rows = bitmap_->raster_;
  // Data that is not drawn is not checked either.
  if (rows.Format() != pf32bit && IsEmpty(CoveredPart(rect, rows))) return;
  DrawMetafile(rect, metafile, ReadMetafileFacts(metafile));
}

void TCanvas::DrawMetafile(const TRect& rect, std::span<const uint8_t> metafile,
                           const MetafileFacts& facts) {
  Raster& rows = bitmap_->raster_;
  bitmap_->modified_ = true;
  if (rows.Format() == pf32bit) {
    PlayMetafile(metafile, facts, rows, {rect.Left, rect.Top, rect.Right, rect.Bottom});
    return;
  }
  // Records are played in 32 bits. Only changed pixels are copied back, so that equal colors keep
  // their indexes.
  const PixelRect clip = CoveredPart(rect, rows);
  if (IsEmpty(clip)) return;
  Raster before(pf32bit, clip.right - clip.left, clip.bottom - clip.top);
  BlitCopied(before, {0, 0, before.Width(), before.Height()}, rows, clip);
  Raster after = before.Clone();
  PlayMetafile(metafile, facts, after,
               {Moved(rect.Left, clip.left), Moved(rect.Top, clip.top),
                Moved(rect.Right, clip.left), Moved(rect.Bottom, clip.top)});
  for (int y = 0; y < after.Height(); ++y) {
    CopyChanges(before, after, y, {clip.left, clip.top}, rows);
  }
}

}  // namespace rasterkit
