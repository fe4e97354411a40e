#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/mix/swap_alpha.h>

namespace rasterkit {

void SwapAlpha(TBitmap* bitmap) {
  if (bitmap == nullptr || bitmap->PixelFormat() != pf32bit) return;
  const auto width = static_cast<size_t>(bitmap->Width());
  for (int y = 0; y < bitmap->Height(); ++y) kernels::SwapAlpha32(bitmap->ScanLine(y), width);
  bitmap->SetModified(true);
}

}  // namespace rasterkit
