#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/bitmaptools/pixels/gray_mono.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/dialogs/editpdfbitmap/bitmap_settings.h>

namespace rasterkit {

void ApplySettings(const BitmapSettings& settings, TBitmap& bitmap) {
  if (settings.mirror) SwapBitmap(true, &bitmap);
  if (settings.colors256) bitmap.SetPixelFormat(pf8bit);
  if (settings.gray) {
    BitmapToGray(&bitmap, false);
  } else if (settings.blackWhite) {
    ColorBmpToSW(&bitmap, kBlackWhiteThreshold);
  }
}

bool RotatePicture(int degrees, std::unique_ptr<TBitmap>& bitmap) {
  constexpr int32_t kWhite = 0xFFFFFF, kThreads = 4;
  if (degrees == 0) return true;
  return RotateBitmap(static_cast<float>(-degrees), bitmap, kWhite, kThreads, nullptr);
}

}  // namespace rasterkit
