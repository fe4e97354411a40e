#pragma once

#include <cstdint>
#include <vector>

#include <rasterkit/graphics/canvas.h>
#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/threads/thread.h>

namespace rasterkit {

class TBitmap;
class TManageThreads;

/// How a source pixel is mixed into a target pixel. The numbers of the enumerators are part of the
/// interface.
enum TPixelMode : uint8_t { pmOverwrite, pmTransparent, pmShadow };

/// What a pixel worker does. The numbers of the enumerators are part of the
/// interface.
enum TPixelTask : uint8_t { ptBrighten, ptContrast, ptAssignInWhite, ptAssignPart };

/// Worker of brightness, contrast or a pixel transfer. It processes one band of rows, has its own
/// copy of the manager's pixel-format fields, and writes only the rows of its band of the target.
///
/// A driver creates it suspended on the calling thread, sets it up by its `Init...` routines, and
/// passes it to `StartAndFree`; the manager's `ThreadDone` counts its end. The transparent color of
/// the target is read on creation, so all workers of one operation are created before the first one
/// starts. At its end it calls the manager's `ProgressTimer` once if there is a timer. A band that
/// reaches beyond the last row ends there.
///
/// 1- and 4-bit pixels are read one byte at a time: `SrcByte` if the source column is a multiple of
/// 8, `SrcLeft` and `SrcRight` if it is even, `TarByte` if the target column is a multiple of 8.
/// Between such columns the last byte is used again, also in the next row; all start with 0. So the
/// result depends on the bands if columns are skipped or a rectangle starts in the middle of a
/// byte.
class RASTERKIT_EXPORT TPixelThread : public TThread {
 public:
  /// Copies band `iThread` and the format fields of the manager, which must outlive the worker.
  TPixelThread(TManageThreads& ManageThreads, int32_t iThread, TPixelTask APixelTask);
  ~TPixelThread() override;

  /// Sets mode, percentage (any number) and gray variant of a transfer. Bitmaps of the same format
  /// are copied pixel by pixel in `pmOverwrite`, indexed ones of up to 4 bits in every mode.
  void InitPixelMode(TPixelMode APixMode, int32_t AProzent, bool AUseGray);
  /// Sets the rectangles of a transfer, whose ratio is the scale; the target's must not be empty.
  /// Columns that lie outside either bitmap are skipped.
  void InitTarSrcRect(const TRect& TarRect, const TRect& SrcRect);
  /// Sets the pf24bit bitmap to change in place and the percentage, for ptBrighten and ptContrast.
  void InitBitmap(TBitmap& ABitmap, int32_t AProzent);

  TManageThreads& ManThreads;
  /// Borrowed.
  TBitmap* SrcBmp;
  TBitmap* TarBmp;
  /// First and last row of the band.
  int32_t ia, ie;
  TPixelTask FPixelTask;
  TPixelMode FPixelMode = pmOverwrite;
  /// Makes pixels of a 32-bit source count as white if their alpha is above 0. No routine sets it.
  bool UseAlpha = false;
  /// Gray variant of a mode. In ptAssignInWhite: white means near-white, not the transparent color.
  bool UseGray = false;
  /// A color is near-white if all its channels are above this.
  int32_t FromGrayVal = 250;
  int32_t nSrcBytes, nSrcBit, nTarBytes, nTarBit;
  /// Pixels are copied in their own format instead of being mixed.
  bool PixTakeOver;
  /// Position of the pixel in its byte of eight.
  int32_t bx = 0;
  int32_t sx = 0, sy = 0;
  int32_t Prozent = 0;
  /// Weights of the mode.
  float f = 1, fproz = 0;
  /// Source pixels per target pixel.
  double pwx = 0, pwy = 0;
  TRect TarR, SrcR;
  /// Current rows, as pointers of their formats.
  RGBArec* Tar32 = nullptr;
  RGBArec* Src32 = nullptr;
  RGBrec* Tar24 = nullptr;
  RGBrec* Src24 = nullptr;
  uint8_t* Tar8 = nullptr;
  uint8_t* Src8 = nullptr;
  uint8_t SrcByte = 0, TarByte = 0;
  /// Invert 1-bit pixels on reading. No routine sets them.
  bool SrcInv = false, TarInv = false;
  /// Palettes, borrowed from the manager; null if there is none.
  int32_t SrcAnz, TarAnz;
  const TColorTable* SrcCol;
  const TColorTable* TarCol;
  int32_t TarBlack, TarWhite;
  uint8_t TarLeft = 0, TarRight = 0, SrcLeft = 0, SrcRight = 0;
  int32_t SrcWhite, SrcLastWhite;
  /// The target's transparent color.
  uint8_t transR = 0, TransG = 0, transB = 0;

 protected:
  void Execute() override;

 private:
  void BrightenBand();
  void ContrastBand();
  void TransferBand();
  void TransferPixels();
  /// Points the row pointers at row y of the target and row `sy` of the source.
  void FetchRows(int y);

  /// Target columns from `firstColumn_` on and the source columns that they show.
  int32_t firstColumn_ = 0;
  std::vector<int32_t> columns_;
};

}  // namespace rasterkit
