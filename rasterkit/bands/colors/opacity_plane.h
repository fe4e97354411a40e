#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// True if the bitmap has a defined alpha channel.
RASTERKIT_EXPORT bool HasAlpha(const TBitmap& bitmap);

/// True if the bitmap has transparent pixels: an alpha channel or a transparent color.
RASTERKIT_EXPORT bool HasTransparency(const TBitmap& bitmap);

/// Draws a partly transparent picture onto the background color as 24-bit pixels. Colors under
/// transparent pixels are lost.
RASTERKIT_EXPORT void DropTransparency(std::unique_ptr<TBitmap>& bitmap, TColor background);

/// Makes every pixel of the color transparent: marks the color, or changes the alpha channel if
/// other pixels are already transparent.
RASTERKIT_EXPORT void MarkTransparent(TBitmap& bitmap, TColor color);

/// Replaces a transparent color by an alpha channel. No-op without transparency.
RASTERKIT_EXPORT void KeyToAlpha(TBitmap& bitmap);

/// Converts the bitmap to 32-bit with an alpha channel; it looks the same.
RASTERKIT_EXPORT void MakeAlphaChannel(TBitmap& bitmap);

/// Keeps the opacity of each pixel while the colors of a picture change.
class RASTERKIT_EXPORT AlphaPlane {
 public:
  /// Removes the transparency: the bitmap is then opaque, and 24-bit if it had any.
  explicit AlphaPlane(TBitmap& bitmap);
  /// Restores the transparency, if there was any: the bitmap is then 32-bit with an alpha channel.
  void Restore(TBitmap& bitmap) const;

 private:
  int width_ = 0;
  std::vector<uint8_t> alphas_;
};

}  // namespace rasterkit::detail
