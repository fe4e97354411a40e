#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <vector>

#include <rasterkit/bands/deskew/find_skew.h>
#include <rasterkit/bands/deskew/skew_score.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using detail::SkewEdges;
using detail::SkewScore;

/// tan(15 degrees) and tan(0.15 degrees), in parts of 65536.
constexpr int kMostSlope = 17560, kStep = 172;
constexpr int kStepsAround = 2, kFinerSteps = 5;
/// Fewer edges are specks.
constexpr size_t kLeastEdges = 300;
/// What the best angle must have above the usual one.
constexpr double kLeastConfidence = 1.6;

struct Best {
  int slope = 0;
  uint64_t score = 0;
};

/// The best of the slopes around another one.
Best BestAround(const SkewEdges& edges, int slope, int steps, int step, int binBits) {
  Best best{slope, 0};
  for (int i = -steps; i <= steps; ++i) {
    RequireTime();
    const int candidate = slope + i * step;
    const uint64_t score = SkewScore(edges, candidate, binBits);
    const bool isNearer = std::abs(candidate) < std::abs(best.slope);
    if (score > best.score || (score == best.score && isNearer)) best = {candidate, score};
  }
  return best;
}

/// The top of a parabola through three scores, in steps from the middle one.
double TopOf(uint64_t before, uint64_t middle, uint64_t after) {
  const auto low = static_cast<double>(before), high = static_cast<double>(middle),
             next = static_cast<double>(after);
  const double curve = low - 2 * high + next;
  return curve < 0 ? std::clamp((low - next) / (2 * curve), -0.5, 0.5) : 0;
}

double DegreesOf(double slope) {
  constexpr double kParts = 1000;
  const double degrees = std::atan(slope / (1 << detail::kSkewSlopeBits)) * 180 / std::numbers::pi;
  return std::round(degrees * kParts) / kParts;
}

/// Steps towards the slope, with smaller counts each time.
double Refined(const SkewEdges& edges, int slope) {
  int step = kStep;
  for (int binBits = 1; binBits >= 0; --binBits) {
    const int steps = kStepsAround * kFinerSteps;
    step = std::max(step / kFinerSteps, 1);
    slope = BestAround(edges, slope, steps, step, binBits).slope;
  }
  const auto score = [&](int at) { return SkewScore(edges, at, 0); };
  return slope + step * TopOf(score(slope - step), score(slope), score(slope + step));
}

}  // namespace

Skew FindSkew(const Raster& picture) {
  const LimitsScope limits;
  constexpr int kBinBits = 2;
  const SkewEdges edges = SkewEdgesOf(detail::SkewGraysOf(picture));
  if (edges.across.size() + edges.down.size() < kLeastEdges) return {};
  Best best;
  std::vector<uint64_t> scores;
  constexpr int kSteps = kMostSlope / kStep + 1;
  for (int i = -kSteps; i <= kSteps; ++i) {
    RequireTime();
    scores.push_back(SkewScore(edges, i * kStep, kBinBits));
    if (scores.back() > best.score) best = {i * kStep, scores.back()};
  }
  const auto middle = scores.begin() + static_cast<std::ptrdiff_t>(scores.size() / 2);
  std::nth_element(scores.begin(), middle, scores.end());
  Skew skew;
  skew.confidence =
      static_cast<double>(best.score) / static_cast<double>(std::max<uint64_t>(*middle, 1));
  const double slope = Refined(edges, best.slope);
  skew.isFound = skew.confidence >= kLeastConfidence && std::abs(slope) <= kMostSlope;
  if (skew.isFound) skew.degrees = DegreesOf(slope);
  return skew;
}

}  // namespace rasterkit
