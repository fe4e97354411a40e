#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include <rasterkit/codecs/rows/ink_transform.h>

namespace rasterkit::detail {

/// A transform with a cache of its latest colors: pictures repeat colors, and a profile takes far
/// longer than a lookup. `Number` and `count` are those of the points of the transform. For one
/// thread.
template <typename Number, size_t count>
class RememberedColors {
 public:
  explicit RememberedColors(std::shared_ptr<const InkTransform> transform)
      : transform_(std::move(transform)), known_(size_t{1} << kIndexBits) {}

  /// Gives the result of the transform for each of `width` points: B G R.
  void ToBgr(const Number* points, size_t width, uint8_t* bgr) {
    asked_.clear();
    places_.clear();
    for (size_t x = 0; x < width; x++, points += count) {
      const Known& known = known_[IndexOf(points)];
      if (known.isSet && std::equal(points, points + count, known.point.begin())) {
        std::copy_n(known.bgr.begin(), 3, bgr + 3 * x);
      } else {
        asked_.insert(asked_.end(), points, points + count);
        places_.push_back(x);
      }
    }
    answers_.resize(3 * places_.size());
    transform_->ToBgr(asked_.data(), places_.size(), answers_.data());
    for (size_t i = 0; i < places_.size(); i++) {
      const uint8_t* answer = &answers_[3 * i];
      std::copy_n(answer, 3, bgr + 3 * places_[i]);
      Remember(&asked_[count * i], answer);
    }
  }

 private:
  static constexpr int kIndexBits = 12;

  struct Known {
    std::array<Number, count> point{};
    std::array<uint8_t, 3> bgr{};
    bool isSet = false;
  };

  static size_t IndexOf(const Number* point) {
    uint64_t mixed = 0;
    for (size_t i = 0; i < count; i++) {
      uint64_t bits = 0;
      std::memcpy(&bits, point + i, sizeof(Number));
      mixed = (mixed ^ bits) * 0x9E3779B97F4A7C15u;
      mixed ^= mixed >> 32;
    }
    return mixed & ((size_t{1} << kIndexBits) - 1);
  }

  void Remember(const Number* point, const uint8_t* bgr) {
    Known& known = known_[IndexOf(point)];
    std::copy_n(point, count, known.point.begin());
    std::copy_n(bgr, 3, known.bgr.begin());
    known.isSet = true;
  }

  const std::shared_ptr<const InkTransform> transform_;
  std::vector<Known> known_;
  std::vector<Number> asked_;
  std::vector<size_t> places_;
  std::vector<uint8_t> answers_;
};

}  // namespace rasterkit::detail
