#include <algorithm>

#include <rasterkit/raster/stretch/axis_positions.h>

namespace rasterkit::detail {
namespace {

/// Steps through floor((2 k + 1) size / (2 length)), or its ceiling minus one, without a division
/// per step.
class CenterSteps {
 public:
  CenterSteps(uint64_t k, uint64_t size, uint64_t length, bool ceiling)
      : whole_(size / length), rest_(2 * (size % length)), unit_(2 * length), ceiling_(ceiling) {
    position_ = MultiplyDivide(2 * k + 1, size, unit_);
    // Unsigned arithmetic wraps, and the difference is exact.
    remainder_ = (2 * k + 1) * size - position_ * unit_;
  }

  int64_t Position() const {
    return static_cast<int64_t>(position_) - (ceiling_ && remainder_ == 0 ? 1 : 0);
  }

  void Next() {
    position_ += whole_;
    remainder_ += rest_;
    if (remainder_ < unit_) return;
    remainder_ -= unit_;
    ++position_;
  }

 private:
  uint64_t whole_, rest_, unit_;
  bool ceiling_;
  uint64_t position_ = 0, remainder_ = 0;
};

}  // namespace

uint64_t MultiplyDivide(uint64_t a, uint64_t b, uint64_t c) {
  // Two steps of 17 bits keep everything within 64 bits.
  constexpr int kLowBits = 17;
  const uint64_t high = (a >> kLowBits) * b;
  const uint64_t low = (a & ((uint64_t{1} << kLowBits) - 1)) * b;
  return ((high / c) << kLowBits) + (((high % c) << kLowBits) + low) / c;
}

bool AxisPositions::IsPlainRun() const {
  for (size_t i = 1; i < positions.size(); ++i) {
    if (positions[i] != positions[i - 1] + 1) return false;
  }
  return true;
}

AxisPositions MapAxis(const AxisSpan& span, int targetSize, int sourceSize, MirroredTie tie) {
  AxisPositions result;
  const int64_t low = std::min(span.start, span.end), high = std::max(span.start, span.end);
  const int64_t partLow = std::min(span.partStart, span.partEnd);
  const int64_t partSize = std::max(span.partStart, span.partEnd) - partLow;
  const int64_t first = std::max<int64_t>(low, 0), last = std::min<int64_t>(high, targetSize);
  if (first >= last || partSize == 0 || sourceSize <= 0) return result;

  const bool mirrored = (span.end < span.start) != (span.partEnd < span.partStart);
  CenterSteps steps(static_cast<uint64_t>(first - low), static_cast<uint64_t>(partSize),
                    static_cast<uint64_t>(high - low), mirrored && tie == MirroredTie::floor);
  result.positions.reserve(static_cast<size_t>(last - first));
  for (int64_t i = first; i < last; ++i, steps.Next()) {
    const int64_t inPart = mirrored ? partSize - 1 - steps.Position() : steps.Position();
    const int64_t position = partLow + inPart;
    if (position < 0 || position >= sourceSize) continue;
    if (result.positions.empty()) result.first = static_cast<int>(i);
    result.positions.push_back(static_cast<int>(position));
  }
  return result;
}

}  // namespace rasterkit::detail
