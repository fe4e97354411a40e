#pragma once

#include <cstddef>
#include <cstdint>

/// Questions to the pixels B G R of a row, answered by three equal bytes for each: 255 for yes, 0
/// for no. Exactly `width` pixels are read and written; the rows must not overlap.
namespace rasterkit::kernels {

/// Are all channels above 250? With `asked` false: is any not?
void NearWhite24(const uint8_t* bgr, size_t width, bool asked, uint8_t* mask);

/// Is the color (0x00RRGGBB) any other than this?
void OtherColor24(const uint8_t* bgr, size_t width, uint32_t color, uint8_t* mask);

/// Is it black, or white with a red of 254 or 255?
void BlackOrWhite24(const uint8_t* bgr, size_t width, uint8_t* mask);

/// False when BlackOrWhite24 would answer no everywhere; a quick look that may be wrong about true.
bool MayHoldBlackOrWhite24(const uint8_t* bgr, size_t width);

/// One byte a pixel to three equal ones.
void ExpandGrays24(const uint8_t* grays, size_t width, uint8_t* bgr);

}  // namespace rasterkit::kernels
