#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::tool {

/// The bitmap has an alpha channel that means something.
bool HasAlpha(const TBitmap& bitmap);

/// Some pixels are not to be seen: by an alpha channel or by a transparent colour.
bool HasTransparency(const TBitmap& bitmap);

/// Draws a partly transparent picture onto the background colour as 24-bit pixels: what lies under
/// transparent pixels was never meant to be seen.
void DropTransparency(std::unique_ptr<TBitmap>& bitmap, TColor background);

/// Makes every pixel of the colour transparent: by marking the colour, or in the alpha channel
/// where something else is transparent already.
void MarkTransparent(TBitmap& bitmap, TColor color);

/// An alpha channel in place of a transparent colour; a picture without transparency stays as it
/// is.
void KeyToAlpha(TBitmap& bitmap);

/// Makes the bitmap 32-bit with an alpha channel that shows what was seen before.
void MakeAlphaChannel(TBitmap& bitmap);

/// How opaque each pixel is, row by row, kept beside a picture whose colours change.
class AlphaPlane {
 public:
  /// Takes the transparency out: the bitmap is then opaque, and 24-bit when it had some.
  explicit AlphaPlane(TBitmap& bitmap);
  /// Puts it back where there was one: the bitmap is then 32-bit with an alpha channel.
  void Restore(TBitmap& bitmap) const;

 private:
  int width_ = 0;
  std::vector<uint8_t> alphas_;
};

}  // namespace rasterkit::tool
