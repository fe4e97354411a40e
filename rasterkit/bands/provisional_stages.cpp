#include <cmath>
#include <functional>

#include <rasterkit/bands/stages.h>
#include <rasterkit/bitmaptools/rotation/orient.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/turn/rotation_mapping.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/cut_out.h>
#include <rasterkit/raster/stretch/halftone.h>
#include <rasterkit/runtime/errors.h>

// Stand-ins until each stage has its own file.

namespace rasterkit {
namespace {

class RasterStage : public Stage {
 public:
  using Work = std::function<Raster(Raster)>;
  explicit RasterStage(Work work) : work_(std::move(work)) {}
  RowRange Needs(RowRange target) const override { return target; }
  Pixels Make(Pixels source, const StageRun&, Changes&) const override {
    auto* rows = std::get_if<Raster>(&source);
    if (rows == nullptr) throw UnsupportedError("numbers are not changed");
    return work_(std::move(*rows));
  }

 private:
  Work work_;
};

std::unique_ptr<Stage> Of(RasterStage::Work work) {
  return std::make_unique<RasterStage>(std::move(work));
}

Raster Taken(TBitmap& bitmap) {
  Raster rows = bitmap.Content().Clone();
  if (bitmap.Transparent()) rows.transparentColor = bitmap.TransparentColor();
  return rows;
}

}  // namespace

std::unique_ptr<Stage> TurnStage(Sides, int quarters) {
  return Of([=](Raster rows) {
    TBitmap bitmap(std::move(rows));
    TurnQuarters(bitmap, quarters);
    return Taken(bitmap);
  });
}
std::unique_ptr<Stage> MirrorStage(Sides, MirrorAxis axis) {
  return Of([=](Raster rows) {
    TBitmap bitmap(std::move(rows));
    Reorient(bitmap, axis == MirrorAxis::leftRight ? 2 : 4);
    return Taken(bitmap);
  });
}
std::unique_ptr<Stage> CropStage(Sides, int left, int top, int width, int height) {
  return Of([=](Raster rows) { return CutOut(rows, {left, top, left + width, top + height}); });
}
RotationFrame FrameOfRotation(Sides source, double degrees) {
  RotationFrame frame;
  const double turned = std::remainder(degrees, 360.0);
  frame.quarters = static_cast<int>(std::round(turned / 90));
  frame.rest = static_cast<float>(turned - 90 * frame.quarters);
  Sides sides = source;
  Affine quarter;
  switch (frame.quarters & 3) {
    case 1:
      quarter = {0, 1, -1, 0, source.width - 1.0, 0};
      break;
    case 2:
      quarter = {-1, 0, 0, -1, source.width - 1.0, source.height - 1.0};
      break;
    case 3:
      quarter = {0, -1, 1, 0, 0, source.height - 1.0};
      break;
    default:
      break;
  }
  if (frame.quarters % 2 != 0) std::swap(sides.width, sides.height);
  if (std::abs(frame.rest) < 0.01f) {
    frame.sides = sides;
    frame.toOld = quarter;
    return frame;
  }
  const auto turn = kernels::SineCosineOfDegrees(detail::NormalizeAngle(frame.rest));
  const auto size = kernels::RotatedSize(sides.width, sides.height, turn);
  frame.sides = {static_cast<int>(size.width), static_cast<int>(size.height)};
  const double w = frame.sides.width / 2.0, h = frame.sides.height / 2.0;
  Affine rest{turn.cosine, turn.sine, -turn.sine, turn.cosine, 0, 0};
  rest.x = sides.width / 2.0 - w * turn.cosine + h * turn.sine;
  rest.y = sides.height / 2.0 - w * turn.sine - h * turn.cosine;
  frame.toOld = quarter.After(rest);
  return frame;
}
std::unique_ptr<Stage> RotateStage(Sides source, double degrees, const Resampling& how) {
  const RotationFrame frame = FrameOfRotation(source, degrees);
  return Of([=](Raster rows) {
    auto bitmap = std::make_unique<TBitmap>(std::move(rows));
    TurnQuarters(*bitmap, frame.quarters);
    RotateBitmapOrThrow(frame.rest, bitmap, how.fill.color, 1);
    return Taken(*bitmap);
  });
}
std::unique_ptr<Stage> AffineStage(Sides, const Affine&, Sides, const Resampling&) {
  throw UnsupportedError("pictures are not brought into the frame of the map");
}
std::unique_ptr<Stage> ResizeStage(Sides, Sides target, Filter, std::optional<double>) {
  return Of([=](Raster rows) {
    Raster small(pf24bit, target.width, target.height);
    CopyHalftone(small, {0, 0, target.width, target.height}, rows);
    if (rows.Format() == pf8bit && IsGrayRamp(rows.palette)) return ConvertRaster(small, pf8bit);
    return small;
  });
}
std::unique_ptr<Stage> ChangeStage(Sides, const ColorChange& change) {
  const auto* bits = std::get_if<SetBits>(&change);
  const int wanted = bits != nullptr ? bits->bits : 24;
  return Of([=](Raster rows) {
    const TPixelFormat format = wanted == 1    ? pf1bit
                                : wanted == 4  ? pf4bit
                                : wanted == 8  ? pf8bit
                                : wanted == 32 ? pf32bit
                                               : pf24bit;
    return ConvertRaster(rows, format);
  });
}
std::unique_ptr<Stage> CombineStage(Sides, const Combination&) {
  throw UnsupportedError("pictures are not combined");
}

}  // namespace rasterkit
