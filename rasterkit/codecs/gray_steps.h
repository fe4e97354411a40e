#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include <rasterkit/codecs/exact_number.h>
#include <rasterkit/codecs/number_keys.h>
#include <rasterkit/raster/number_type.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// The numbers that are shown black and white; black may be the greater one.
struct ShownRange {
  ExactNumber black, white;
};

/// The gray of each number: 255 * (number - black) / (white - black) without rounding on the way,
/// then the nearest whole number, halves up, and cut to 0 to 255. Where black is white, a lower
/// number is black, a greater one white, and the number itself black. NaN is white.
class RASTERKIT_EXPORT GraySteps {
 public:
  GraySteps(NumberType type, const ShownRange& range);

  /// The gray of a number's key (see number_keys.h).
  uint8_t Of(uint64_t key) const {
    if (!table_.empty()) return table_[key];
    return numbers_.Has(key) ? Search(key) : uint8_t{255};
  }

 private:
  uint8_t Search(uint64_t key) const {
    const auto passed = std::upper_bound(steps_.begin(), steps_.end(), key) - steps_.begin();
    return static_cast<uint8_t>(isTurned_ ? 255 - passed : passed);
  }

  KeyRange numbers_;
  /// The first key of each next gray.
  std::vector<uint64_t> steps_;
  bool isTurned_ = false;
  /// The gray of every key, for types of up to 16 bits.
  std::vector<uint8_t> table_;
};

}  // namespace rasterkit::detail
