#pragma once

#include <memory>

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {

/// What the four buttons ask for.
struct BitmapSettings {
  bool mirror = false, colors256 = false, gray = false, blackWhite = false;
};

/// The grey value below which a pixel becomes black.
inline constexpr int kBlackWhiteThreshold = 125;

/// Applies them in the order of the fields; black and white only where grey is not asked for.
void ApplySettings(const BitmapSettings& settings, TBitmap& bitmap);

/// Turns the bitmap clockwise by so many degrees, on white; 0 does nothing. False when it cannot be
/// turned: then it is as it was, and the user has been told.
bool RotatePicture(int degrees, std::unique_ptr<TBitmap>& bitmap);

}  // namespace rasterkit
