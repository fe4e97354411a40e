#include <cmath>
#include <limits>

#include <rasterkit/bands/stages.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/kernels/turn/rotation_mapping.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

constexpr double kNearQuarter = 0.5;
/// Angles below this turn nothing.
constexpr float kNoTurn = 0.01f, kWholeTurn = 359.99f;

/// Leads from indexes of a picture that was turned by quarters to those of `source`.
Affine QuartersToOld(Sides source, int quarters) {
  const double right = source.width - 1, bottom = source.height - 1;
  switch (quarters & 3) {
    case 1:
      return {0, 1, -1, 0, right, 0};
    case 2:
      return {-1, 0, 0, -1, right, bottom};
    case 3:
      return {0, -1, 1, 0, 0, bottom};
    default:
      return {};
  }
}

/// The center counts at half the size in pixel indexes, as RotationMapping counts it.
Affine RestToOld(Sides source, Sides target, float degrees) {
  const kernels::SineCosine turn = kernels::SineCosineOfDegrees(degrees);
  const double x = target.width / 2.0, y = target.height / 2.0;
  return {turn.cosine,
          turn.sine,
          -turn.sine,
          turn.cosine,
          source.width / 2.0 - (x * turn.cosine - y * turn.sine),
          source.height / 2.0 - (x * turn.sine + y * turn.cosine)};
}

int Side(int64_t side) {
  if (side > std::numeric_limits<int>::max()) {
    throw RangeError("a picture cannot be " + std::to_string(side) + " pixels wide or high");
  }
  return static_cast<int>(side);
}

Sides RotatedSides(Sides source, float degrees) {
  const kernels::Size size =
      kernels::RotatedSize(source.width, source.height, kernels::SineCosineOfDegrees(degrees));
  return {Side(size.width), Side(size.height)};
}

}  // namespace

RotationFrame FrameOfRotation(Sides source, double degrees) {
  if (!std::isfinite(degrees)) throw RangeError("a picture is turned by a finite angle only");
  RotationFrame frame;
  double angle = std::remainder(degrees, 360.0);
  const double quarters = std::round(angle / 90);
  if (std::abs(angle - quarters * 90) <= kNearQuarter) {
    frame.quarters = static_cast<int>(quarters) & 3;
    angle -= quarters * 90;
  }
  frame.sides = frame.quarters % 2 == 0 ? source : Sides{source.height, source.width};
  frame.toOld = QuartersToOld(source, frame.quarters);
  const float rest = detail::NormalizeAngle(static_cast<float>(angle));
  if (rest < kNoTurn || rest > kWholeTurn) return frame;
  const Sides turned = frame.sides;
  frame.rest = rest;
  frame.sides = RotatedSides(turned, rest);
  if (frame.sides.width < 1 || frame.sides.height < 1) {
    throw RangeError("a picture that is turned by this angle has no pixels");
  }
  frame.toOld = frame.toOld.After(RestToOld(turned, frame.sides, rest));
  return frame;
}

}  // namespace rasterkit
