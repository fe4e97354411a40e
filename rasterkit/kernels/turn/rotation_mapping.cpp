#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <rasterkit/kernels/rows/extended_sum.h>
#include <rasterkit/kernels/turn/rotation_mapping.h>

namespace rasterkit::kernels {
namespace {

int64_t DoubledCenter(int size) {
  return static_cast<int64_t>(2.0 * static_cast<double>(static_cast<float>(size / 2.0)));
}

int64_t RoundedProduct(int size, double factor) {
  return RoundExtendedSum(int64_t{2} * size, factor, 0, 0, 0);
}

// Rounds the estimate where it is certain, which is nearly always; `exact` decides near a half.
template <typename Exact>
int64_t RoundCertainly(double estimate, double error, Exact exact) {
  const double raised = estimate + 0.5;
  auto whole = static_cast<int64_t>(raised);
  if (static_cast<double>(whole) > raised) --whole;
  const double fraction = raised - static_cast<double>(whole);
  return fraction > error && fraction < 1 - error ? whole : exact();
}

// The first x in 0 .. width for which `holds` turns true, width when it never does; `estimate` is
// where to look.
template <typename Predicate>
int FirstTrue(int width, double estimate, Predicate holds) {
  int x = static_cast<int>(std::clamp(estimate, 0.0, static_cast<double>(width)));
  while (x > 0 && holds(x - 1)) --x;
  while (x < width && !holds(x)) ++x;
  return x;
}

// The run of x with 0 <= at(x) < size, where at(x) is a rounded, monotone, nearly linear function.
template <typename At>
RotationMapping::Run RunOfLine(int width, int size, double slope, double start, At at) {
  if (slope == 0) {
    const int64_t value = at(0);
    return {0, value >= 0 && value < size ? width : 0};
  }
  const double lowEnd = (-0.5 - start) / slope + 0.5;
  const double highEnd = (size - 0.5 - start) / slope + 0.5;
  if (slope > 0) {
    return {FirstTrue(width, lowEnd, [&](int x) { return at(x) >= 0; }),
            FirstTrue(width, highEnd, [&](int x) { return at(x) >= size; })};
  }
  return {FirstTrue(width, highEnd, [&](int x) { return at(x) < size; }),
          FirstTrue(width, lowEnd, [&](int x) { return at(x) < 0; })};
}

}  // namespace

Size RotatedSize(int width, int height, const SineCosine& turn) {
  return {std::llabs(RoundedProduct(height, turn.sine)) +
              std::llabs(RoundedProduct(width, turn.cosine)),
          std::llabs(RoundedProduct(width, turn.sine)) +
              std::llabs(RoundedProduct(height, turn.cosine))};
}

RotationMapping::RotationMapping(const SineCosine& turn, int sourceWidth, int sourceHeight,
                                 int targetWidth, int targetHeight)
    : sine_(turn.sine),
      cosine_(turn.cosine),
      sourceWidth_(sourceWidth),
      sourceHeight_(sourceHeight),
      targetWidth_(targetWidth),
      targetHeight_(targetHeight),
      doubledSourceX_(DoubledCenter(sourceWidth)),
      doubledSourceY_(DoubledCenter(sourceHeight)),
      doubledTargetX_(DoubledCenter(targetWidth)),
      doubledTargetY_(DoubledCenter(targetHeight)) {
  // The estimate rounds five times (two products, two sums, the half that is added), the rule four
  // times, each time by at most 2^-53 of a magnitude below the sum of all that can meet: nine such
  // errors stay below 2^-49 of it.
  const double magnitude =
      static_cast<double>(sourceWidth) + sourceHeight + targetWidth + targetHeight + 2;
  doubleError_ = std::ldexp(magnitude, -49);
}

double RotationMapping::ColumnEstimate(int x, int y) const {
  const double dx = 0.5 * static_cast<double>(int64_t{2} * x - doubledTargetX_);
  const double dy = 0.5 * static_cast<double>(int64_t{2} * y - doubledTargetY_);
  return dx * cosine_ - dy * sine_ + 0.5 * static_cast<double>(doubledSourceX_);
}

double RotationMapping::RowEstimate(int x, int y) const {
  const double dx = 0.5 * static_cast<double>(int64_t{2} * x - doubledTargetX_);
  const double dy = 0.5 * static_cast<double>(int64_t{2} * y - doubledTargetY_);
  return dx * sine_ + dy * cosine_ + 0.5 * static_cast<double>(doubledSourceY_);
}

int64_t RotationMapping::SourceColumn(int x, int y) const {
  return RoundCertainly(ColumnEstimate(x, y), doubleError_, [&] {
    return RoundExtendedSum(int64_t{2} * x - doubledTargetX_, cosine_,
                            int64_t{2} * y - doubledTargetY_, sine_, doubledSourceX_);
  });
}

int64_t RotationMapping::SourceRow(int x, int y) const {
  // A difference with the negated second factor is the sum: signs do not change how a product is
  // rounded.
  return RoundCertainly(RowEstimate(x, y), doubleError_, [&] {
    return RoundExtendedSum(int64_t{2} * x - doubledTargetX_, sine_,
                            int64_t{2} * y - doubledTargetY_, -cosine_, doubledSourceY_);
  });
}

RotationMapping::Run RotationMapping::InsideRun(int y) const {
  if (targetWidth_ == 0) return {};
  const Run columns = RunOfLine(targetWidth_, sourceWidth_, cosine_, ColumnEstimate(0, y),
                                [&](int x) { return SourceColumn(x, y); });
  if (columns.first >= columns.last) return {};
  const Run rows = RunOfLine(targetWidth_, sourceHeight_, sine_, RowEstimate(0, y),
                             [&](int x) { return SourceRow(x, y); });
  const Run both{std::max(columns.first, rows.first), std::min(columns.last, rows.last)};
  return both.first < both.last ? both : Run{};
}

RotationMapping::Run RotationMapping::InsideRun(int y, const RotationParts& parts,
                                                int width) const {
  const Run run = InsideRun(y + parts.targetTop);
  const int first = std::clamp(run.first - parts.targetLeft, 0, width);
  return {first, std::clamp(run.last - parts.targetLeft, first, width)};
}

}  // namespace rasterkit::kernels
