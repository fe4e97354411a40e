#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// How pixels are brightened: each channel becomes channel * factor + gain as a single-precision
/// number, rounded to the nearest whole one, halves to even, cut to 0 to 255; the gain is (255 -
/// gray value) * weight, cut toward zero.
///
/// For `percent` from 0 to 100 (factor 1 + percent / 100, weight the factor less 1, both singles)
/// there is a form in 16-bit numbers that gives the same bytes, for all channel values and gains;
/// tests walk through all of them. The exact product and sum would make no half of any channel but
/// those whose hundredths end in 50; there the single's error counts. The sum, rounded to single,
/// is the half itself unless the error exceeds what the single's last place can show, and then it
/// lies on the error's side.
struct Brightening {
  float factor = 1, weight = 0;
  bool hasForm = false;
  /// The percentage in thirty-two-thousandths, cut and rounded up: channel times either, rounded,
  /// differs where there is a half.
  int16_t low = 0, high = 0;
  /// (255 - gray) * 2 times this, cut to its upper 16 bits, is the gain.
  uint16_t gain = 0;
  /// The single's error in halves of its last place, times 2^16, and whether it is above 0.
  uint16_t error = 0;
  bool errorIsUp = false;
};

Brightening MakeBrightening(int32_t percent, float factor, float weight);

/// Brightens `width` pixels B G R. `target` is another row or the same one; nothing beyond the
/// pixels is touched.
void BrightenRow24(const Brightening& brightening, const uint8_t* bgr, size_t width,
                   uint8_t* target);

}  // namespace rasterkit::kernels
