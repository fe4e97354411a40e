#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

#include <rasterkit/dialogs/execbitmap/step_part.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/raster/cut_out.h>

namespace rasterkit {
namespace {

/// A copy of a part; an automatic transparent color is that of the whole picture.
std::unique_ptr<TBitmap> CopyOfPart(const TBitmap& picture, const PixelRect& part) {
  auto copy = std::make_unique<TBitmap>(CutOut(picture.Content(), part));
  copy->SetPixelFormat(picture.PixelFormat());
  if (picture.Transparent()) {
    copy->SetTransparentColor(picture.TransparentColor());
    copy->SetTransparent(true);
  }
  return copy;
}

/// Surrounding pixels that affect the result.
int MarginOf(const ColorChange& step) {
  const auto* const values = std::get_if<AdjustColors>(&step);
  return values != nullptr && values->sharpen != 0 ? 1 : 0;
}

/// Cuts out and keeps what describes the pixels.
TBitmap PartOf(TBitmap bitmap, const PixelRect& part) {
  const bool isWhole = part.left == 0 && part.top == 0 && part.right == bitmap.Width() &&
                       part.bottom == bitmap.Height();
  if (isWhole) return bitmap;
  return std::move(*CopyOfPart(bitmap, part));
}

}  // namespace

ColorChange StepOf(const ValueChange& change) {
  if (change.operation == kOperationBlackAndWhite) {
    return MakeMono{change.grayValue, change.dark, change.light};
  }
  if (change.operation != kOperationValues) return AdjustColors{};
  return AdjustColors{change.lightness, change.contrast, change.sharpen,
                      change.red,       change.green,    change.blue};
}

TBitmap ChangeStepPart(const TBitmap& picture, const TRect& part, const ColorChange& step) {
  const int margin = MarginOf(step);
  const PixelRect computed{std::max(part.Left - margin, 0), std::max(part.Top - margin, 0),
                           std::min(part.Right + margin, picture.Width()),
                           std::min(part.Bottom + margin, picture.Height())};
  Picture changed = Picture::Of(CopyOfPart(picture, computed));
  changed.Change(step);
  // Threads cost more than they bring for few pixels.
  constexpr int64_t kFewPixels = 200'000;
  Run run;
  const int64_t pixels = int64_t{computed.right - computed.left} * (computed.bottom - computed.top);
  run.threads = pixels < kFewPixels ? 1 : 0;
  return PartOf(std::move(*changed.Bitmap(run)),
                {part.Left - computed.left, part.Top - computed.top, part.Right - computed.left,
                 part.Bottom - computed.top});
}

TBitmap DrawStepPart(const TBitmap& picture, const TRect& part, const ValueChange& change,
                     TColor ground) {
  TBitmap drawn;
  const int width = part.Right - part.Left, height = part.Bottom - part.Top;
  drawn.ResetPixels(pf32bit, std::max(width, 0), std::max(height, 0));
  if (drawn.Empty()) return drawn;
  TBitmap changed = ChangeStepPart(picture, part, StepOf(change));
  if (changed.Transparent() || changed.AlphaFormat() == afDefined) {
    drawn.Canvas().Brush.Color = ground;
    drawn.Canvas().FillRect({0, 0, width, height});
  }
  drawn.Canvas().Draw(0, 0, changed);
  return drawn;
}

}  // namespace rasterkit
