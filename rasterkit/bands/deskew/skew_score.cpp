#include <algorithm>
#include <vector>

#include <rasterkit/bands/deskew/skew_score.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

/// The sum over the counts of `place - other * slope`, which is never below `least`.
class Counts {
 public:
  Counts(int64_t least, int64_t most, int binBits) : shift_(kSkewSlopeBits + binBits) {
    first_ = least >> shift_;
    // An empty count on both sides.
    counts_.resize(static_cast<size_t>((most >> shift_) - first_) + 3);
  }

  void Add(int64_t place) { ++counts_[static_cast<size_t>((place >> shift_) - first_) + 1]; }

  uint64_t Score() const {
    uint64_t score = 0;
    for (size_t i = 1; i < counts_.size(); ++i) {
      const int64_t difference = static_cast<int64_t>(counts_[i]) - counts_[i - 1];
      score += static_cast<uint64_t>(difference * difference);
    }
    return score;
  }

 private:
  int shift_;
  int64_t first_ = 0;
  std::vector<uint32_t> counts_;
};

constexpr int64_t kOne = int64_t{1} << kSkewSlopeBits;

}  // namespace

uint64_t SkewScore(const SkewEdges& edges, int slope, int binBits) {
  const int64_t alongWidth = int64_t{edges.width} * slope;
  const int64_t alongHeight = int64_t{edges.height} * slope;
  Counts across(-std::max<int64_t>(alongWidth, 0),
                edges.height * kOne - std::min<int64_t>(alongWidth, 0), binBits);
  for (const SkewPoint& point : edges.across) {
    across.Add(point.y * kOne - int64_t{point.x} * slope);
  }
  Counts down(std::min<int64_t>(alongHeight, 0),
              edges.width * kOne + std::max<int64_t>(alongHeight, 0), binBits);
  for (const SkewPoint& point : edges.down) down.Add(point.x * kOne + int64_t{point.y} * slope);
  return across.Score() + down.Score();
}

}  // namespace rasterkit::detail
