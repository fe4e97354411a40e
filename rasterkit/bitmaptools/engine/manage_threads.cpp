#include <mutex>
#include <utility>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/pixels/bit_depths.h>
#include <rasterkit/bitmaptools/pixels/palette_entries.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/rounding.h>
#include <rasterkit/runtime/threads/application.h>

namespace rasterkit {
namespace {

constexpr unsigned kProgressInterval = 100;

}  // namespace

TManageThreads::TManageThreads(int32_t ThreadsCount, int32_t MaxProgress, TProgressEvent AProgress)
    : Progress(std::move(AProgress)) {
  AnzThreads = ThreadsCount >= 1 ? ThreadsCount : 0;
  if (Progress) {
    MaxProg = MaxProgress;
    Timer = std::make_unique<TTimer>();
    Timer->SetInterval(kProgressInterval);
    Timer->OnTimer = [this](TTimer&) {
      // Waiting here could be for a worker whose callback waits for this thread.
      const std::unique_lock free(reporting_, std::try_to_lock);
      if (free) Report();
    };
  }
  InitThreads(MaxProgress);
}

TManageThreads::~TManageThreads() = default;

void TManageThreads::InitThreads(int32_t AHeight) {
  int64_t threads = AnzThreads;
  if (AHeight < static_cast<double>(threads) / 4) threads = Round(AHeight / 4.0);
  if (threads <= 0) {
    AnzThreads = 0;
    iBis.assign(1, 0);
    throw DivisionByZeroError("division by zero: there are no threads to divide " +
                              std::to_string(AHeight) + " rows among");
  }
  AnzThreads = static_cast<int32_t>(threads);
  iBis.assign(static_cast<size_t>(threads) + 1, 0);
  const int64_t step = Round(AHeight / static_cast<double>(threads));
  for (int64_t i = 1; i < threads; ++i) {
    iBis[static_cast<size_t>(i)] = static_cast<int32_t>(i * step);
  }
  iBis.back() = AHeight;
}

bool TManageThreads::InitByteBits(TBitmap& ATarBmp, TBitmap& ASrcBmp) {
  TarBmp = &ATarBmp;
  SrcBmp = &ASrcBmp;
  if (!detail::GetPixelByteInfo(ATarBmp, nTarBytes, nTarBit) || nTarBytes == 2) return false;
  if (ATarBmp.PixelFormat() != ASrcBmp.PixelFormat()) {
    if (!detail::GetPixelByteInfo(ASrcBmp, nSrcBytes, nSrcBit) || nSrcBytes == 2) return false;
    if (nTarBytes < 2 && nTarBytes < nSrcBytes) return false;
  } else {
    nSrcBytes = nTarBytes;
    nSrcBit = nTarBit;
  }
  SrcAnz = 0;
  SrcCol.reset();
  TarAnz = 0;
  TarCol.reset();
  TarBlack = 0;
  if (nSrcBytes < 2) ReadSourcePalette();
  if (nTarBytes == 1) ReadTargetPalette();
  return true;
}

void TManageThreads::ReadSourcePalette() {
  SrcAnz = GetPaletteColors(SrcBmp->Palette(), SrcCol);
  SrcWhite = SrcCol ? detail::FindWhiteEntry(SrcAnz, *SrcCol) : -1;
  const tagPALETTEENTRY last =
      SrcAnz > 0 ? (*SrcCol)[static_cast<size_t>(SrcAnz - 1)] : tagPALETTEENTRY{};
  const bool isWhite = last.peRed == 255 && last.peGreen == 255 && last.peBlue == 255;
  SrcLastWhite = isWhite ? SrcAnz - 1 : -1;
}

void TManageThreads::ReadTargetPalette() {
  TarAnz = GetPaletteColors(TarBmp->Palette(), TarCol);
  TarBlack = TarWhite = -1;
  if (!TarCol) return;
  TarBlack = detail::FindBlackEntry(TarAnz, *TarCol);
  if (TarBlack < 0) TarBlack = detail::NearestPaletteEntry(TarAnz, *TarCol, 0, 0, 0);
  TarWhite = detail::FindWhiteEntry(TarAnz, *TarCol);
}

void TManageThreads::DoProgress() {
  const std::lock_guard<TCriticalSection> inside(CS);
  AnzProg.fetch_add(1, std::memory_order_relaxed);
  if (AnzThreads < 2) Application.ProcessMessages();
}

void TManageThreads::ProgressTimer(const TTimer*) {
  if (!Progress) return;
  // A 64-bit product, so that the percentage is correct above 21 million rows too.
  const int64_t hundredfold = int64_t{100} * AnzProg.load(std::memory_order_relaxed);
  Progress(static_cast<float>(static_cast<double>(hundredfold) / MaxProg));
}

void TManageThreads::ReportProgress() noexcept {
  const std::lock_guard one(reporting_);
  Report();
}

void TManageThreads::Report() noexcept {
  if (IsEnded()) return;
  try {
    ProgressTimer();
  } catch (...) {
    const std::lock_guard<TCriticalSection> inside(CS);
    if (!progressError_) progressError_ = std::current_exception();
    isEnded_.store(true, std::memory_order_relaxed);
  }
}

void TManageThreads::RethrowProgressError() const {
  if (progressError_) std::rethrow_exception(progressError_);
}

void TManageThreads::ThreadDone(const TThread&) {
  --AnzThreads;
}

}  // namespace rasterkit
