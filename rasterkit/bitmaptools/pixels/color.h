#pragma once

#include <cstdint>

#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>

/// Functions of color values. They are thread-safe and never fail. A system color (a negative
/// TColor) is not resolved: it counts as black.
namespace rasterkit {

/// Splits a color into its channels, 0 to 255; the top byte is ignored. A system color gives 0,
/// 0, 0.
RASTERKIT_EXPORT void GetRGB(TColor color, uint8_t& red, uint8_t& green, uint8_t& blue);

/// Gray value red * 0.297 + green * 0.589 + blue * 0.114, summed in extended precision and
/// truncated: 0 to 255. These weights are not the usual 0.299 and 0.587. The gray value of a
/// neutral color is its channel, except 89 and 178, which give 88 and 177.
RASTERKIT_EXPORT uint8_t GrayValue(uint8_t red, uint8_t green, uint8_t blue);
RASTERKIT_EXPORT uint8_t GrayValue(TColor color);

/// Brightens (percent above 0) or darkens (below 0) a color; 0 returns it with the top byte
/// cleared.
///
/// Darkening scales each channel and keeps the low byte of the rounded product: below -100 percent
/// the products are negative and wrap (200 at -150 percent gives -100, kept as 156). Brightening
/// scales each channel, adds a share of the distance of the color's gray value from white, and
/// clamps; so dark colors gain more than light ones.
RASTERKIT_EXPORT TColor ColorBrightness(TColor color, int32_t percent);

/// Complement of a color: 255 minus each channel. A system color gives white.
RASTERKIT_EXPORT TColor ComplementColor(TColor color);

}  // namespace rasterkit
