#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/row_transfer.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::detail {
namespace {

/// Limit of the kernels.
constexpr int32_t kNearWhite = 250;

bool IsOrdinary(const TPixelThread& worker) {
  return worker.SrcBmp != worker.TarBmp && !worker.UseAlpha && !worker.SrcInv && !worker.TarInv &&
         worker.FromGrayVal == kNearWhite;
}

}  // namespace

std::unique_ptr<RowTransfer> MakeRowTransfer(const TPixelThread& worker, const ColumnRun& run) {
  if (run.columns.empty() || !IsOrdinary(worker)) return nullptr;
  if (worker.nTarBytes >= 3) return MakeColorTransfer(worker, run);
  if (worker.nTarBytes == 1) return MakeIndexTransfer(worker, run);
  if (worker.nTarBit != 4) return MakeMonoTransfer(worker, run);
  return nullptr;
}

}  // namespace rasterkit::detail
