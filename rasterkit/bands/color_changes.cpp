#include <string>
#include <utility>

#include <rasterkit/bands/adjust_pixels.h>
#include <rasterkit/bands/color_changes.h>
#include <rasterkit/bands/colors/each_color.h>
#include <rasterkit/bands/colors/index_pixels.h>
#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/pixels/transparency.h>
#include <rasterkit/raster/format_of_bits.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

struct Channels {
  uint8_t red, green, blue;

  explicit Channels(TColor color)
      : red(static_cast<uint8_t>(color)),
        green(static_cast<uint8_t>(color >> 8)),
        blue(static_cast<uint8_t>(color >> 16)) {}
};

void RecolorPixels(TBitmap& bitmap, const RecolorByGray& change) {
  const Channels color(change.color);
  const auto recolor = change.darker ? SetColorBisGray : SetColorAbGray;
  recolor(&bitmap, static_cast<uint8_t>(change.threshold), color.red, color.green, color.blue,
          static_cast<uint8_t>(change.alpha.value_or(255)));
}

/// Keeps the palette and its depth: transparent entries get the background color.
void PaintKeyEntries(TBitmap& bitmap, TColor background) {
  const TColor key = bitmap.TransparentColor();
  const Channels color(background);
  TColorTable table = PaletteTable(bitmap.Palette());
  for (tagPALETTEENTRY& entry : table) {
    if (EntryColor(entry) == key) entry = {color.red, color.green, color.blue, entry.peFlags};
  }
  const auto count = static_cast<size_t>(bitmap.Palette().Count());
  bitmap.SetPalette(HPALETTE(std::span(table).first(count)));
  bitmap.SetTransparent(false);
}

}  // namespace

void Change(const MakeGray& change, BitmapPointer& bitmap) {
  if (change.trueColor || HasIndexes(*bitmap) || HasTransparency(*bitmap)) {
    return ChangeColors(*bitmap, [](TBitmap& pixels) { BitmapToGray(&pixels, true); });
  }
  BitmapToGray(bitmap.get(), false);
  // A color profile does not apply to gray pixels.
  bitmap->SetProfile({});
}

void Change(const AdjustColors& change, BitmapPointer& bitmap) {
  const auto adjust = [&](TBitmap& pixels) { AdjustPixels(pixels, change); };
  if (change.sharpen == 0) return ChangeColors(*bitmap, adjust);
  // Sharpening depends on neighboring pixels, so it cannot change the palette alone.
  const AlphaPlane alphas(*bitmap);
  bitmap->SetPixelFormat(pf24bit);
  adjust(*bitmap);
  alphas.Restore(*bitmap);
}

void Change(const WhitenLight& change, BitmapPointer& bitmap) {
  const auto threshold = static_cast<uint8_t>(change.threshold);
  ChangeColors(*bitmap, [&](TBitmap& pixels) { SetToTransparent(&pixels, threshold); });
  if (change.makesTransparent) MarkTransparent(*bitmap, clWhite);
}

void Change(const RecolorByGray& change, BitmapPointer& bitmap) {
  if (!change.alpha) {
    return ChangeColors(*bitmap, [&](TBitmap& pixels) { RecolorPixels(pixels, change); });
  }
  MakeAlphaChannel(*bitmap);
  RecolorPixels(*bitmap, change);
}

void Change(const ReplaceKeyColor& change, BitmapPointer& bitmap) {
  ChangeColors(*bitmap, [&](TBitmap& pixels) { SetTransColor(pixels, change.color); });
  if (change.makesTransparent) MarkTransparent(*bitmap, change.color);
}

void Change(const WhiteForPdf&, BitmapPointer& bitmap) {
  if (HasIndexes(*bitmap) && PutWhiteLast(*bitmap)) return;
  // A full palette without white has no room for it, and the library's routine does not support
  // 15-bit pixels.
  if (HasIndexes(*bitmap) || bitmap->PixelFormat() == pf15bit) bitmap->SetPixelFormat(pf24bit);
  CheckTransColForPDF(bitmap.get());
}

void Change(const PaintTransparency& change, BitmapPointer& bitmap) {
  if (!HasTransparency(*bitmap)) return;
  if (HasIndexes(*bitmap)) return PaintKeyEntries(*bitmap, change.background);
  // For white, ResetTransparent handles fully transparent pixels; the rest is blended.
  bitmap->SetTransparent(true);
  if (change.background == clWhite) ResetTransparent(*bitmap);
  DropTransparency(bitmap, change.background);
}

void Change(const SwapOpacity&, BitmapPointer& bitmap) {
  if (!HasTransparency(*bitmap)) {
    throw FormatError("the picture has no transparency; swapping would hide all of it");
  }
  KeyToAlpha(*bitmap);
  SwapAlpha(bitmap.get());
}

void Change(const SetBits& change, BitmapPointer& bitmap) {
  const TPixelFormat format = FormatOfBits(change.bits);
  if (HasAlpha(*bitmap) && format != pf32bit) DropTransparency(bitmap, clWhite);
  bitmap->SetPixelFormat(format);
}

}  // namespace rasterkit::detail
