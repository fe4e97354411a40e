#include "tool/pictures/adjust_values.h"

#include <algorithm>

#include <rasterkit/bitmaptools/engine/contrast_brightness.h>

namespace rasterkit::tool {
namespace {

/// One thread would spare black and white, and the library wants rows for its threads.
int EngineThreads(const TBitmap& pixels, int threads) {
  constexpr int rowsOfThread = 4;
  return std::clamp(threads, 2, std::max(2, pixels.Height() / rowsOfThread));
}

}  // namespace

void ChangeContrast(TBitmap& pixels, int percent, int threads) {
  if (percent != 0) Kontrast(&pixels, percent, EngineThreads(pixels, threads), nullptr);
}

void ChangeBrightness(TBitmap& pixels, int percent, int threads) {
  if (percent != 0) Helligkeit(&pixels, percent, EngineThreads(pixels, threads), nullptr);
}

}  // namespace rasterkit::tool
