#include <limits>
#include <utility>

#include <rasterkit/bitmaptools/engine/pixel_driver.h>
#include <rasterkit/bitmaptools/engine/pixel_transfer.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit {
namespace {

struct PartTask {
  TPixelTask task;
  TPixelMode mode;
  int32_t percent;
  bool useGray;
};

bool HasSpan(int32_t from, int32_t to) {
  const int64_t span = int64_t{to} - from;
  return span > 0 && span <= std::numeric_limits<int32_t>::max();
}

bool HasWork(const TBitmap* target, const TBitmap* source, const TRect& tarRect,
             const TRect& srcRect) {
  if (target == nullptr || source == nullptr || target->Empty() || source->Empty()) return false;
  if (srcRect.Left == srcRect.Right || srcRect.Top == srcRect.Bottom) return false;
  return HasSpan(tarRect.Left, tarRect.Right) && HasSpan(tarRect.Top, tarRect.Bottom);
}

void RunPartTask(const PartTask& part, TBitmap& target, TBitmap& source, const TRect& tarRect,
                 const TRect& srcRect, int32_t threadsCount, TProgressEvent progress) {
  const int32_t rows = tarRect.Bottom - tarRect.Top;
  if (rows <= detail::kMostRowsWithoutProgress) progress = nullptr;
  TManageThreads manager(threadsCount, rows, std::move(progress));
  if (!manager.InitByteBits(target, source)) return;
  // Also if the progress callback ends the operation halfway.
  target.SetModified(true);
  detail::RunPixelWorkers(manager, [&](int32_t i) {
    auto worker = MakeThread<TPixelThread>(manager, i, part.task);
    worker->InitPixelMode(part.mode, part.percent, part.useGray);
    worker->InitTarSrcRect(tarRect, srcRect);
    return worker;
  });
}

}  // namespace

void AssignPartBitmap(TBitmap* TarBmp, TBitmap* SrcBmp, const TRect& TarRect, const TRect& SrcRect,
                      int32_t ThreadsCount, TProgressEvent AProgress, TPixelMode PixMode,
                      int32_t Prozent, bool UseGray, bool) {
  if (!HasWork(TarBmp, SrcBmp, TarRect, SrcRect)) return;
  RunPartTask({ptAssignPart, PixMode, Prozent, UseGray}, *TarBmp, *SrcBmp, TarRect, SrcRect,
              ThreadsCount, std::move(AProgress));
}

void AssignInWhite(TBitmap* TarBmp, TBitmap* SrcBmp, const TRect& TarRect, const TRect& SrcRect,
                   uint8_t TransLimit, int32_t ThreadsCount, TProgressEvent AProgress) {
  if (!HasWork(TarBmp, SrcBmp, TarRect, SrcRect)) return;
  const bool useGray = !(TarBmp->Transparent() && TransLimit >= 255);
  RunPartTask({ptAssignInWhite, pmOverwrite, 0, useGray}, *TarBmp, *SrcBmp, TarRect, SrcRect,
              ThreadsCount, std::move(AProgress));
}

}  // namespace rasterkit
