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
/// What a scan has: most of it is paper, and one angle stands out. On less paper, such as a colored
/// map, the angle must stand out more. Found with scans and photographs.
struct Paper {
  int background;
  double confidence;
};
constexpr Paper kPapers[] = {{800, 5}, {500, 10}};

bool IsScan(const SkewEdges& edges, double confidence) {
  return std::any_of(std::begin(kPapers), std::end(kPapers), [&](const Paper& paper) {
    return edges.background >= paper.background && confidence >= paper.confidence;
  });
}

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

/// The center of the scores around a slope that lie above a part of the best one. The best one
/// alone depends on how the lines meet the pixels.
double CenterAround(const SkewEdges& edges, int slope) {
  constexpr int kSteps = 24, kSmallStep = 8;
  constexpr int64_t kWhole = 5, kPart = 3;
  std::vector<int64_t> scores;
  for (int i = -kSteps; i <= kSteps; ++i) {
    RequireTime();
    scores.push_back(static_cast<int64_t>(SkewScore(edges, slope + i * kSmallStep, 0)));
  }
  const int64_t best = *std::max_element(scores.begin(), scores.end());
  int64_t weights = 0, moment = 0;
  for (int i = -kSteps; i <= kSteps; ++i) {
    const int64_t score = scores[static_cast<size_t>(i + kSteps)];
    const int64_t weight = std::max<int64_t>(kWhole * score - kPart * best, 0);
    weights += weight;
    moment += weight * i * kSmallStep;
  }
  if (weights == 0) return slope;
  return slope + static_cast<double>(moment) / static_cast<double>(weights);
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
  return CenterAround(edges, slope);
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
  skew.isFound = IsScan(edges, skew.confidence) && std::abs(slope) <= kMostSlope;
  if (skew.isFound) skew.degrees = DegreesOf(slope);
  return skew;
}

}  // namespace rasterkit
