#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/turn/mirror_pixels.h>

namespace rasterkit {

// The rule is a copy onto a parallelogram that is one pixel smaller than the bitmap in both
// directions, and so is the copied part: the first column gets the last but one, and the last one
// stays. Mirroring that part in place gives the same without a copy.
void SwapBitmap(bool horizontal, TBitmap* bitmap) {
  if (bitmap == nullptr || bitmap->Width() < 2 || bitmap->Height() < 2) return;
  const kernels::PixelRows part{bitmap->ScanLine(0), bitmap->Stride(), bitmap->Width() - 1,
                                bitmap->Height() - 1};
  if (horizontal) {
    kernels::MirrorLeftRight(part, bitmap->StoredBits());
  } else {
    kernels::MirrorTopBottom(part, bitmap->StoredBits());
  }
  bitmap->SetModified(true);
}

}  // namespace rasterkit
