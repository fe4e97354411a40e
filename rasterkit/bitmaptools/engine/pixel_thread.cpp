#include <algorithm>

#include <rasterkit/bitmaptools/engine/color_rows.h>
#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/mixing.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/row_transfer.h>
#include <rasterkit/bitmaptools/engine/transfer_rules.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/transfer/scaled_columns.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

int64_t SpanOf(int32_t from, int32_t to) {
  return int64_t{to} - from;
}

/// Columns that have a source column; they are consecutive, because scaling keeps the order.
detail::ColumnRun RunOf(int32_t first, const std::vector<int32_t>& columns) {
  const auto isThere = [](int32_t column) { return column >= 0; };
  const auto begin = std::find_if(columns.begin(), columns.end(), isThere);
  const auto end = std::find_if_not(begin, columns.end(), isThere);
  return {first + static_cast<int32_t>(begin - columns.begin()), {begin, end}};
}

}  // namespace

TPixelThread::TPixelThread(TManageThreads& ManageThreads, int32_t iThread, TPixelTask APixelTask)
    : TThread(true),
      ManThreads(ManageThreads),
      SrcBmp(ManageThreads.SrcBmp),
      TarBmp(ManageThreads.TarBmp),
      ia(ManageThreads.iBis[static_cast<size_t>(iThread)]),
      ie(ManageThreads.iBis[static_cast<size_t>(iThread) + 1] - 1),
      FPixelTask(APixelTask),
      nSrcBytes(ManageThreads.nSrcBytes),
      nSrcBit(ManageThreads.nSrcBit),
      nTarBytes(ManageThreads.nTarBytes),
      nTarBit(ManageThreads.nTarBit),
      PixTakeOver(SrcBmp != nullptr && TarBmp != nullptr &&
                  SrcBmp->PixelFormat() == TarBmp->PixelFormat()),
      SrcAnz(ManageThreads.SrcAnz),
      TarAnz(ManageThreads.TarAnz),
      SrcCol(ManageThreads.SrcCol.get()),
      TarCol(ManageThreads.TarCol.get()),
      TarBlack(ManageThreads.TarBlack),
      TarWhite(ManageThreads.TarWhite),
      SrcWhite(ManageThreads.SrcWhite),
      SrcLastWhite(ManageThreads.SrcLastWhite) {
  OnTerminate = [this](TThread& sender) { ManThreads.ThreadDone(sender); };
  if (FPixelTask == ptAssignInWhite && TarBmp != nullptr) {
    GetRGB(TarBmp->TransparentColor(), transR, TransG, transB);
  }
}

TPixelThread::~TPixelThread() = default;

void TPixelThread::InitPixelMode(TPixelMode APixMode, int32_t AProzent, bool AUseGray) {
  const bool sameFormat =
      SrcBmp != nullptr && TarBmp != nullptr && SrcBmp->PixelFormat() == TarBmp->PixelFormat();
  PixTakeOver = sameFormat && (nTarBytes < 2 || APixMode == pmOverwrite);
  FPixelMode = APixMode;
  Prozent = AProzent;
  UseGray = AUseGray;
  f = 1;
  fproz = 0;
  if (APixMode == pmTransparent) f = detail::TransparentWeight(AProzent);
  if (APixMode == pmShadow) {
    fproz = detail::BrightnessFactor(AProzent);
    f = detail::BrightnessWeight(fproz);
  }
}

void TPixelThread::InitTarSrcRect(const TRect& TarRect, const TRect& SrcRect) {
  TarR = TarRect;
  SrcR = SrcRect;
  pwx = static_cast<double>(SpanOf(SrcR.Left, SrcR.Right)) /
        static_cast<double>(SpanOf(TarR.Left, TarR.Right));
  pwy = static_cast<double>(SpanOf(SrcR.Top, SrcR.Bottom)) /
        static_cast<double>(SpanOf(TarR.Top, TarR.Bottom));
  if (SrcBmp == nullptr || TarBmp == nullptr) return;
  firstColumn_ = std::max(TarR.Left, 0);
  const int32_t end = std::max(firstColumn_, std::min(TarR.Right, TarBmp->Width() - 1) + 1);
  columns_ = kernels::ScaledColumns({TarR.Left, SrcR.Left, pwx}, firstColumn_, end - firstColumn_,
                                    SrcBmp->Width());
}

void TPixelThread::InitBitmap(TBitmap& ABitmap, int32_t AProzent) {
  SrcBmp = &ABitmap;
  Prozent = AProzent;
}

void TPixelThread::Execute() {
  if (ManThreads.IsEnded()) return;
  switch (FPixelTask) {
    case ptBrighten:
      BrightenBand();
      break;
    case ptContrast:
      ContrastBand();
      break;
    case ptAssignInWhite:
    case ptAssignPart:
      TransferBand();
      break;
  }
  if (ManThreads.Timer) ManThreads.ReportProgress();
}

void TPixelThread::BrightenBand() {
  detail::BrightenRows(*SrcBmp, ia, ie, Prozent, detail::Spared::none,
                       [this] { return !ManThreads.IsEnded(); });
}

void TPixelThread::ContrastBand() {
  detail::ContrastRows(*SrcBmp, ia, ie, Prozent, detail::Spared::none,
                       [this] { return !ManThreads.IsEnded(); });
}

void TPixelThread::TransferBand() {
  const int64_t top = FPixelTask == ptAssignInWhite ? TarR.Top : 0;
  const int64_t first = std::max<int64_t>(ia + top, 0);
  const int64_t end = std::min<int64_t>(ie + top + 1, TarBmp->Height());
  const auto transfer = detail::MakeRowTransfer(*this, RunOf(firstColumn_, columns_));
  for (int64_t y = first; y < end && !ManThreads.IsEnded(); ++y) {
    RequireTime();
    ManThreads.DoProgress();
    const int64_t row = kernels::RoundScaled(y - TarR.Top, pwy) + SrcR.Top;
    if (row < 0 || row >= SrcBmp->Height()) continue;
    sy = static_cast<int32_t>(row);
    FetchRows(static_cast<int>(y));
    if (transfer) {
      transfer->TransferRow(Tar8, Src8);
    } else {
      TransferPixels();
    }
  }
}

void TPixelThread::TransferPixels() {
  detail::TransferRules(*this).TransferRow(firstColumn_, columns_);
}

void TPixelThread::FetchRows(int y) {
  Tar8 = TarBmp->ScanLine(y);
  Src8 = SrcBmp->ScanLine(sy);
  Tar24 = reinterpret_cast<RGBrec*>(Tar8);
  Src24 = reinterpret_cast<RGBrec*>(Src8);
  Tar32 = reinterpret_cast<RGBArec*>(Tar8);
  Src32 = reinterpret_cast<RGBArec*>(Src8);
}

}  // namespace rasterkit
