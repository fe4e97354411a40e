#include <rasterkit/codecs/gray_steps.h>

namespace rasterkit::detail {
namespace {

constexpr int kGrays = 256, kTableBits = 16;

/// Whether a number is at least as light as a gray's lower border, decided without rounding.
class GrayBorder {
 public:
  GrayBorder(const ShownRange& range, bool isTurned, bool isPoint)
      : range_(range), isTurned_(isTurned), isPoint_(isPoint) {}

  /// True if the number is beyond the border of gray `gray` (1 to 255) on the way up.
  bool IsPassed(const ExactNumber& number, int gray) const {
    // 255 * (number - black) / (white - black) >= gray - 1/2
    constexpr int kHalves = 2 * (kGrays - 1);
    ExactSum sum;
    sum.Add(kHalves, number);
    sum.Add(-(2 * gray - 1), range_.white);
    sum.Add(-(kHalves - (2 * gray - 1)), range_.black);
    // From white up to black the numbers leave the gray; at the border itself they have it.
    const bool isBeyond = isTurned_ || isPoint_;
    return isBeyond ? sum.Sign() > 0 : sum.Sign() >= 0;
  }

 private:
  const ShownRange& range_;
  const bool isTurned_, isPoint_;
};

int Compare(const ExactNumber& a, const ExactNumber& b) {
  ExactSum sum;
  sum.Add(1, a);
  sum.Add(-1, b);
  return sum.Sign();
}

}  // namespace

GraySteps::GraySteps(NumberType type, const ShownRange& range)
    : numbers_(NumberKeys(type)), isTurned_(Compare(range.black, range.white) > 0) {
  const bool isPoint = Compare(range.black, range.white) == 0;
  const GrayBorder border(range, isTurned_, isPoint);
  const KeyRange finite = FiniteKeys(type);
  uint64_t first = finite.first;
  for (int step = 1; step < kGrays; ++step) {
    const int gray = isTurned_ ? kGrays - step : step;
    // The first key beyond the border; borders come in the order of the keys.
    uint64_t last = finite.last;
    if (!border.IsPassed(NumberOfKey(type, last), gray)) {
      // Infinity is beyond; whole numbers end here.
      if (numbers_.last == finite.last) break;
      steps_.push_back(numbers_.last);
      continue;
    }
    while (first < last) {
      const uint64_t middle = first + (last - first) / 2;
      if (border.IsPassed(NumberOfKey(type, middle), gray)) {
        last = middle;
      } else {
        first = middle + 1;
      }
    }
    steps_.push_back(last);
  }
  if (KeyBitsOf(type) > kTableBits) return;
  std::vector<uint8_t> table(size_t{1} << KeyBitsOf(type), 255);
  for (uint64_t key = numbers_.first; key <= numbers_.last; ++key) table[key] = Search(key);
  table_ = std::move(table);
}

}  // namespace rasterkit::detail
