#pragma once

namespace rasterkit::kernels {

struct SineCosine {
  double sine = 0;
  double cosine = 1;
};

/// Sine and cosine of an angle in degrees: the doubles nearest to the exact values, the same on
/// every processor. So 30 degrees has a sine of exactly 0.5, and the multiples of 90 give exact
/// zeros and ones. `degrees` is any finite number.
///
/// How that is certain: the angle is reduced to 0 to 45 degrees without rounding, the series is
/// summed in pairs of doubles (relative error below 2^-95), and the full run of the tests walks all
/// reduced angles from 2^-17 degrees on that a float can give to see that none lies so near to the
/// middle between two doubles that this error could matter. Reduction gives a smaller angle only
/// where the angle itself lies that near to 0; these are not walked.
SineCosine SineCosineOfDegrees(float degrees);

/// How near the last digits of a sine or cosine came to the middle between two doubles; see
/// `SineCosineOfDegrees`.
struct RoundingMargin {
  /// Distance of the summed value from the nearest such middle, relative to the value.
  double relative = 1;
};

/// The margins of sine and cosine for an angle of 0 to 45 degrees (tests walk all of them).
RoundingMargin MarginOfReducedDegrees(double degrees);

}  // namespace rasterkit::kernels
