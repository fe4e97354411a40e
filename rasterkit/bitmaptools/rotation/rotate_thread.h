#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/threads/thread.h>

namespace rasterkit {

class TBitmap;
class TManageThreads;

/// Rows of a bitmap, fetched once and shared by the workers that read them.
using TOwnScanLines = std::shared_ptr<const std::vector<const uint8_t*>>;

/// Worker that rotates one band of rows. Created suspended and owned by the driver; writes only the
/// rows of its band in `TarBmp`.
class RASTERKIT_EXPORT TRotateThread : public TThread {
 public:
  /// `nBytes` is 0 for 1- and 4-bit bitmaps; `iAnf` and `iEnd` are the first and the last row of
  /// the band; `ABackground` is the pixel for corners that the picture does not cover (see
  /// kernels::RotatePixels).
  TRotateThread(TManageThreads& ManageThreads, const TBitmap& SourceBmp, TBitmap& TargetBmp,
                float AAngle, TOwnScanLines ScanL, int32_t nBytes, int32_t iAnf, int32_t iEnd,
                uint32_t ABackground);

  const TBitmap& SrcBmp;
  TBitmap& TarBmp;
  /// Degrees, counter-clockwise.
  const float Angle;
  const TOwnScanLines SL;
  const int32_t ia, ie;
  const int32_t nByte;
  TManageThreads& ManThreads;
  const uint32_t Background;

  /// Rotates the band; public for a driver that does it on its own thread. Throws RangeError if the
  /// band reaches beyond the last row, after processing the existing rows.
  void RotateBand();

 protected:
  void Execute() override { RotateBand(); }
};

}  // namespace rasterkit
