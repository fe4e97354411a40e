#include "tool/pictures/adjust_values.h"

#include <algorithm>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>

namespace rasterkit::tool {
namespace {

/// At least 2: with one thread the library leaves black and white unchanged. At most one thread per
/// four rows.
int EngineThreads(const TBitmap& pixels, int threads) {
  constexpr int kRowsOfThread = 4;
  return std::clamp(threads, 2, std::max(2, pixels.Height() / kRowsOfThread));
}

}  // namespace

void ChangeContrast(TBitmap& pixels, int percent, int threads) {
  if (percent != 0) Kontrast(&pixels, percent, EngineThreads(pixels, threads), nullptr);
}

void ChangeBrightness(TBitmap& pixels, int percent, int threads) {
  if (percent != 0) Helligkeit(&pixels, percent, EngineThreads(pixels, threads), nullptr);
}

}  // namespace rasterkit::tool
