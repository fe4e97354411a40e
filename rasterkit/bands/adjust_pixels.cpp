#include <rasterkit/bands/adjust_pixels.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bitmaptools/engine/color_rows.h>
#include <rasterkit/bitmaptools/engine/sharpen.h>
#include <rasterkit/bitmaptools/engine/shift_colors.h>

namespace rasterkit::detail {

void AdjustPixels(TBitmap& pixels, const AdjustColors& values, const StageRun& run) {
  const int rows = pixels.Height();
  const int piece = PieceOf(rows, pixels.Stride());
  if (values.brightness != 0) {
    ForRows(rows, piece, run, {0, 0.3}, [&](int first, int last) {
      BrightenRows(pixels, first, last - 1, values.brightness, Spared::none);
    });
  }
  if (values.contrast != 0) {
    ForRows(rows, piece, run, {0.3, 0.5}, [&](int first, int last) {
      ContrastRows(pixels, first, last - 1, values.contrast, Spared::none);
    });
  }
  Sharpen(&pixels, values.sharpen);
  if (values.red == 0 && values.green == 0 && values.blue == 0) return;
  ShiftColors(&pixels, static_cast<float>(values.red), static_cast<float>(values.green),
              static_cast<float>(values.blue));
}

}  // namespace rasterkit::detail
