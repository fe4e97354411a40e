#include <algorithm>
#include <cmath>

#include <rasterkit/kernels/turn/degrees.h>

namespace rasterkit::kernels {
namespace {

// An unevaluated sum of two doubles, |low| at most half a unit in the last place of high: about 106
// bits. The products are split by hand (Dekker), as a fused multiply-add is not there on every
// processor.
struct Pair {
  double high = 0;
  double low = 0;
};

Pair SumOfOrdered(double big, double small) {
  const double sum = big + small;
  return {sum, small - (sum - big)};
}

Pair ExactSum(double a, double b) {
  const double sum = a + b;
  const double part = sum - a;
  return {sum, (a - (sum - part)) + (b - part)};
}

Pair SplitInHalves(double value) {
  const double scaled = 134217729.0 * value;  // 2^27 + 1
  const double high = scaled - (scaled - value);
  return {high, value - high};
}

Pair ExactProduct(double a, double b) {
  const double product = a * b;
  const Pair x = SplitInHalves(a);
  const Pair y = SplitInHalves(b);
  return {product, ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low};
}

Pair operator+(Pair a, Pair b) {
  const Pair high = ExactSum(a.high, b.high);
  const Pair low = ExactSum(a.low, b.low);
  const Pair sum = SumOfOrdered(high.high, high.low + low.high);
  return SumOfOrdered(sum.high, sum.low + low.low);
}

Pair operator*(Pair a, Pair b) {
  const Pair product = ExactProduct(a.high, b.high);
  return SumOfOrdered(product.high, product.low + (a.high * b.low + a.low * b.high));
}

Pair DividedBy(Pair a, double divisor) {
  const double quotient = a.high / divisor;
  const Pair back = ExactProduct(quotient, divisor);
  const double rest = ((a.high - back.high) - back.low) + a.low;
  return SumOfOrdered(quotient, rest / divisor);
}

constexpr Pair kRadiansPerDegree{0x1.1df46a2529d39p-6, 0x1.5c1d8becdd291p-62};

struct PairSineCosine {
  Pair sine;
  Pair cosine;
};

// The power series from its small end. At 45 degrees the first term that is skipped is below
// 2^-120.
PairSineCosine SumSeries(double degrees) {
  const Pair angle = kRadiansPerDegree * Pair{degrees, 0};
  Pair square = angle * angle;
  square = {-square.high, -square.low};
  Pair sine{1, 0};
  Pair cosine{1, 0};
  for (int n = 30; n >= 2; n -= 2) {
    cosine = Pair{1, 0} + DividedBy(square * cosine, n * (n - 1.0));
    sine = Pair{1, 0} + DividedBy(square * sine, n * (n + 1.0));
  }
  return {angle * sine, cosine};
}

double MarginOf(Pair value) {
  if (value.high == 0) return 1;
  const double toward = value.low < 0 ? 0.0 : 2.0;
  const double half = std::fabs(std::nextafter(value.high, toward) - value.high) / 2;
  return (half - std::fabs(value.low)) / value.high;
}

SineCosine OfReducedDegrees(double degrees) {
  const PairSineCosine sums = SumSeries(degrees);
  return {sums.sine.high, sums.cosine.high};
}

}  // namespace

SineCosine SineCosineOfDegrees(float degrees) {
  const double turned = std::fmod(std::fabs(static_cast<double>(degrees)), 360.0);
  const int quarter = static_cast<int>(turned / 90.0);
  double rest = turned - quarter * 90.0;
  const bool reflected = rest > 45.0;
  if (reflected) rest = 90.0 - rest;
  const SineCosine first = OfReducedDegrees(rest);
  const double s = reflected ? first.cosine : first.sine;
  const double c = reflected ? first.sine : first.cosine;
  SineCosine result;
  switch (quarter) {
    case 0:
      result = {s, c};
      break;
    case 1:
      result = {c, -s};
      break;
    case 2:
      result = {-s, -c};
      break;
    default:
      result = {-c, s};
      break;
  }
  if (degrees < 0) result.sine = -result.sine;
  // No negative zeros: they would be told apart from zeros nowhere but in a comparison of bits.
  return {result.sine + 0.0, result.cosine + 0.0};
}

RoundingMargin MarginOfReducedDegrees(double degrees) {
  const PairSineCosine sums = SumSeries(degrees);
  return {std::min(MarginOf(sums.sine), MarginOf(sums.cosine))};
}

}  // namespace rasterkit::kernels
