#include <algorithm>
#include <utility>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/rotation/rotate_thread.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/turn/rotate_pixels.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

TRotateThread::TRotateThread(TManageThreads& ManageThreads, const TBitmap& SourceBmp,
                             TBitmap& TargetBmp, float AAngle, TOwnScanLines ScanL, int32_t nBytes,
                             int32_t iAnf, int32_t iEnd, uint32_t ABackground)
    : TThread(true),
      SrcBmp(SourceBmp),
      TarBmp(TargetBmp),
      Angle(AAngle),
      SL(std::move(ScanL)),
      ia(iAnf),
      ie(iEnd),
      nByte(nBytes),
      ManThreads(ManageThreads),
      Background(ABackground) {}

void TRotateThread::RotateBand() {
  const kernels::RotationMapping mapping(kernels::SineCosineOfDegrees(Angle), SrcBmp.Width(),
                                         SrcBmp.Height(), TarBmp.Width(), TarBmp.Height());
  const kernels::ConstPixelRows source{SL->empty() ? nullptr : SL->front(), SrcBmp.Stride(),
                                       SrcBmp.Width(), SrcBmp.Height()};
  const int bits = nByte > 0 ? nByte * 8 : SrcBmp.StoredBits();
  for (int32_t first = ia; first <= ie;) {
    const int32_t end = std::min({first + kernels::kRotationStripRows, ie + 1, TarBmp.Height()});
    RequireTime();
    for (int32_t y = first; y < std::max(end, first + 1); ++y) ManThreads.DoProgress();
    TarBmp.ScanLine(first);  // a missing row ends the worker here
    kernels::RotatePixels(mapping, source,
                          {TarBmp.ScanLine(0), TarBmp.Stride(), TarBmp.Width(), TarBmp.Height()},
                          bits, Background, first, end);
    first = end;
  }
}

}  // namespace rasterkit
