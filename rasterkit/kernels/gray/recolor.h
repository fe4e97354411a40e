#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/kernels/gray/gray_side.h>

/// Rows of pixels, some of which get another color in place; exactly the bytes of `width` pixels
/// are touched. A color is the number that the bytes of its pixel make, 0xAARRGGBB; pixels of
/// three bytes have no use for the top one.
namespace rasterkit::kernels {

/// Pixels B G R whose gray value lies on `side` become `color`.
void RecolorByGray24(uint8_t* bgr, size_t width, GraySide side, uint32_t color);

/// The same for B G R A; the alpha has no say and is replaced too.
void RecolorByGray32(uint8_t* bgra, size_t width, GraySide side, uint32_t color);

/// The same for words 5-6-5, which become `word`. Their channels count times 8, 4 and 8, but 0xFFFF
/// is white.
void RecolorByGray16(uint8_t* words, size_t width, GraySide side, uint16_t word);

/// Pixels B G R of the color `from` become `to`.
void ReplaceColor24(uint8_t* bgr, size_t width, uint32_t from, uint32_t to);

}  // namespace rasterkit::kernels
