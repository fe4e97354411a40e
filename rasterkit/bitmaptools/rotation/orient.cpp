#include <utility>

#include <rasterkit/bitmaptools/rotation/orient.h>
#include <rasterkit/kernels/turn/turn_pixels.h>
#include <rasterkit/raster/format_of_bits.h>

namespace rasterkit {
namespace {

kernels::AxisTurn TurnFor(Orientation orientation) {
  switch (orientation) {
    case Orientation::FlipHorizontally:
      return {false, true, false};
    case Orientation::Rotate180:
      return kernels::kHalfTurn;
    case Orientation::FlipVertically:
      return {false, false, true};
    case Orientation::Rotate90ClockwiseThenFlipHorizontally:
      return {true, false, false};
    case Orientation::Rotate90Clockwise:
      return kernels::kQuarterTurnClockwise;
    case Orientation::Rotate90ClockwiseThenFlipVertically:
      return {true, true, true};
    case Orientation::Rotate90CounterClockwise:
      return kernels::kQuarterTurnCounterClockwise;
    default:
      return {};
  }
}

}  // namespace

void Reorient(TBitmap& bitmap, Orientation orientation) {
  const kernels::AxisTurn turn = TurnFor(orientation);
  if (turn == kernels::AxisTurn{}) return;
  const int width = turn.transpose ? bitmap.Height() : bitmap.Width();
  const int height = turn.transpose ? bitmap.Width() : bitmap.Height();
  const TPixelFormat format = bitmap.PixelFormat();
  const bool hasName = format != pfDevice && format != pfCustom;

  TBitmap turned;
  turned.ResetPixels(hasName ? format : FormatOfBits(bitmap.StoredBits()), width, height);
  if (!hasName) turned.SetPixelFormat(format);
  if (width > 0 && height > 0) {
    const TBitmap& source = bitmap;
    kernels::TurnPixels({source.ScanLine(0), source.Stride(), source.Width(), source.Height()},
                        {turned.ScanLine(0), turned.Stride(), width, height}, source.StoredBits(),
                        turn);
  }
  turned.CarryFrom(bitmap,
                   {.exchangedAxes = turn.transpose, .transparency = CarriedTransparency::fixed});
  turned.SetModified(true);
  bitmap = std::move(turned);
}

void Reorient(TBitmap& bitmap, int orientation) {
  if (orientation < 1 || orientation > 8) return;
  Reorient(bitmap, static_cast<Orientation>(orientation));
}

void TurnQuarters(TBitmap& bitmap, int quarters) {
  switch (quarters & 3) {
    case 1:
      return Reorient(bitmap, Orientation::Rotate90CounterClockwise);
    case 2:
      return Reorient(bitmap, Orientation::Rotate180);
    case 3:
      return Reorient(bitmap, Orientation::Rotate90Clockwise);
    default:
      return;
  }
}

}  // namespace rasterkit
