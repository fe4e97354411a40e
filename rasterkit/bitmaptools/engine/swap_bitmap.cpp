#include <rasterkit/bitmaptools/engine/composition.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/turn/mirror_pixels.h>

namespace rasterkit {

// The parallelogram onto which the copy goes is one pixel short of the bitmap both ways, and so is
// what is copied: its first column takes the last but one, so that the last one never moves.
// Mirroring that part within itself is the same without a copy.
void SwapBitmap(bool horizontal, TBitmap* bitmap) {
  if (bitmap == nullptr || bitmap->Width() < 2 || bitmap->Height() < 2) return;
  const kernels::PixelRows part{bitmap->ScanLine(0), bitmap->Stride(), bitmap->Width() - 1,
                                bitmap->Height() - 1};
  if (horizontal)
    kernels::MirrorLeftRight(part, bitmap->StoredBits());
  else
    kernels::MirrorTopBottom(part, bitmap->StoredBits());
  bitmap->SetModified(true);
}

}  // namespace rasterkit
