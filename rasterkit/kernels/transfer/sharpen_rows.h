#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// A pixel stays unchanged if all its neighbors differ by fewer levels than this in every channel:
/// noise and film grain must not be sharpened.
inline constexpr int kSharpenTolerance = 4;

/// Moves each channel of `width` pixels B G R away from the mean of the 3 x 3 pixels around it.
///
/// Nine times the channel, less the sum of the nine, times `share`, in thirty-two-thousandths,
/// halves up, is added to it, and the sum is cut to 0 to 255. A `share` below 0 (-4000 to 8000 are
/// allowed) moves it towards the mean.
///
/// The three rows start one pixel before the first and end one pixel after the last of those that
/// are changed, and are only read; `target` is another row.
void SharpenRow24(int16_t share, const uint8_t* above, const uint8_t* row, const uint8_t* below,
                  size_t width, uint8_t* target);

}  // namespace rasterkit::kernels
