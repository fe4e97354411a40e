#pragma once

#include <memory>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// The settings of the four buttons.
struct BitmapSettings {
  bool mirror = false, colors256 = false, gray = false, blackWhite = false;
};

/// Pixels with a smaller gray value become black.
inline constexpr int kBlackWhiteThreshold = 125;

/// Applies the settings in the order of the fields; black and white only without gray.
void ApplySettings(const BitmapSettings& settings, TBitmap& bitmap);

/// Rotates the bitmap clockwise by `degrees` on white; no-op for 0. Returns false if it cannot be
/// rotated: it does not change then, and the user has seen a message.
bool RotatePicture(int degrees, std::unique_ptr<TBitmap>& bitmap);

}  // namespace rasterkit
