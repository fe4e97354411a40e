#include <algorithm>

#include <rasterkit/dialogs/execbitmap/changed_part.h>
#include <rasterkit/raster/cut_out.h>

namespace rasterkit {
namespace {

/// Returns how many bits per pixel of each row remain when the palette of a bitmap changes.
int BitsKeptOfPalette(int count) {
  if (count == 2) return 1;
  return count == 16 ? 4 : 8;
}

/// Whether the result of a pixel depends on its position in the row.
bool NeedsWholeRows(const TBitmap& picture) {
  return IsIndexed(picture.PixelFormat()) &&
         BitsKeptOfPalette(picture.Palette().Count()) < picture.StoredBits();
}

/// Returns the area that must be computed for `part`.
PixelRect PartToCompute(const TBitmap& picture, const TRect& part, int margin) {
  const bool wholeRows = NeedsWholeRows(picture);
  return {wholeRows ? 0 : std::max(part.Left - margin, 0), std::max(part.Top - margin, 0),
          wholeRows ? picture.Width() : std::min(part.Right + margin, picture.Width()),
          std::min(part.Bottom + margin, picture.Height())};
}

TBitmap CopyOfPart(const TBitmap& picture, const PixelRect& part) {
  TBitmap copy(CutOut(picture.Content(), part));
  copy.SetPixelFormat(picture.PixelFormat());
  return copy;
}

/// The changed area, and the position of `part` in it.
struct Changed {
  TBitmap pixels;
  TPoint origin;
};

Changed ChangePart(const TBitmap& picture, const TRect& part, const ValueChange& change) {
  const PixelRect computed = PartToCompute(picture, part, change.Margin());
  Changed result{CopyOfPart(picture, computed),
                 {part.Left - computed.left, part.Top - computed.top}};
  change.ApplyTo(result.pixels);
  return result;
}

/// An automatic color is that of the bottom-left pixel of the whole picture.
TColor TransparentColorOf(const TBitmap& picture, const ValueChange& change) {
  if (picture.TransparentMode() == tmFixed) return picture.TransparentColor();
  const int bottom = picture.Height() - 1;
  const Changed corner = ChangePart(picture, {0, bottom, 1, bottom + 1}, change);
  return corner.pixels.PixelColor(corner.origin.X, corner.origin.Y);
}

}  // namespace

TBitmap DrawChangedPart(const TBitmap& picture, const TRect& part, const ValueChange& change,
                        TColor ground) {
  TBitmap drawn;
  const int width = part.Right - part.Left, height = part.Bottom - part.Top;
  drawn.ResetPixels(pf32bit, width, height);
  if (drawn.Empty()) return drawn;
  drawn.Canvas().Brush.Color = ground;
  drawn.Canvas().FillRect({0, 0, width, height});
  Changed changed = ChangePart(picture, part, change);
  if (picture.Transparent()) {
    changed.pixels.SetTransparentColor(TransparentColorOf(picture, change));
    changed.pixels.SetTransparent(true);
  }
  drawn.Canvas().Draw(-changed.origin.X, -changed.origin.Y, changed.pixels);
  return drawn;
}

}  // namespace rasterkit
