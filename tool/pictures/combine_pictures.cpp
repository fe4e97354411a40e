#include "tool/pictures/combine_pictures.h"

#include <algorithm>

#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/graphics/canvas.h>

#include "tool/pictures/alpha_channel.h"
#include "tool/pictures/palette_indexes.h"

namespace rasterkit::tool {
namespace {

TRect AllOf(const TBitmap& bitmap) {
  return {0, 0, bitmap.Width(), bitmap.Height()};
}

/// Palette colors are not averaged: thin lines of a plan would fade.
std::unique_ptr<TBitmap> Stretched(const TBitmap& over, const TBitmap& under) {
  auto source = over.Clone();
  const bool isDrawing = HasIndexes(*source);
  KeyToAlpha(*source);
  if (!HasAlpha(*source)) source->SetPixelFormat(pf24bit);
  if (source->Width() == under.Width() && source->Height() == under.Height()) return source;
  auto target = std::make_unique<TBitmap>();
  target->ResetPixels(source->PixelFormat(), under.Width(), under.Height());
  target->CarryFrom(*source, {.resolution = false,
                              .profile = false,
                              .palette = false,
                              .transparency = CarriedTransparency::none});
  target->Canvas().StretchMode = isDrawing ? smPlain : smHalftone;
  target->Canvas().CopyStretched(AllOf(*target), *source);
  return target;
}

void DrawKeyed(TBitmap& under, const TBitmap& over, int percent) {
  TBlendFunction blend;
  blend.SourceConstantAlpha = static_cast<uint8_t>((255 * (100 - percent) + 50) / 100);
  blend.PerPixelAlpha = HasAlpha(over);
  if (blend.PerPixelAlpha) return under.Canvas().AlphaBlend(AllOf(under), over, AllOf(over), blend);
  // Where white is skipped, both pictures are equal, and blending changes nothing.
  const auto drawn = under.Clone();
  drawn->Canvas().TransparentBlt(AllOf(*drawn), over, AllOf(over), clWhite);
  under.Canvas().AlphaBlend(AllOf(under), *drawn, AllOf(*drawn), blend);
}

TPixelMode EngineMode(CombineMode mode) {
  if (mode == CombineMode::transparent) return pmTransparent;
  return mode == CombineMode::shadow ? pmShadow : pmOverwrite;
}

/// Both are 24-bit and of the same size, and the rectangles cover them completely: nothing is
/// scaled, and the last row and column are included.
void Transfer(TBitmap& under, TBitmap& over, const CombineOptions& options, int threads,
              const TProgressEvent& progress) {
  constexpr int kRowsOfThread = 4;
  const int count = std::clamp(threads, 1, std::max(1, under.Height() / kRowsOfThread));
  const TRect all = AllOf(under);
  if (options.mode == CombineMode::intoWhite) {
    return AssignInWhite(&under, &over, all, all, 0, count, progress);
  }
  AssignPartBitmap(&under, &over, all, all, count, progress, EngineMode(options.mode),
                   options.percent, options.gray, false);
}

}  // namespace

void CombinePictures(TBitmap& under, const TBitmap& over, const CombineOptions& options,
                     int threads, const TProgressEvent& progress) {
  under.SetPixelFormat(pf24bit);
  std::unique_ptr<TBitmap> source = Stretched(over, under);
  if (options.mode == CombineMode::key) return DrawKeyed(under, *source, options.percent);
  if (HasAlpha(*source)) DropTransparency(source, clWhite);
  Transfer(under, *source, options, threads, progress);
}

}  // namespace rasterkit::tool
