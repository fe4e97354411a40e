#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace rasterkit::detail {

/// The places of a row at which its color changes, rising, from white at the left edge: the first
/// one is 0 if the first pixel is black. The width of the row follows the last change, several
/// times.
class G4Changes {
 public:
  /// A white row.
  explicit G4Changes(int width)
      : places_(static_cast<size_t>(width) + kBefore + kBehind), width_(width) {
    End(0);
  }

  /// Places from the first one on. The one before it is 0; `width + 2` places and kSlack more may
  /// be written.
  int32_t* Places() { return places_.data() + kBefore; }
  const int32_t* Places() const { return places_.data() + kBefore; }
  /// Number of changes.
  int Count() const { return count_; }
  /// Says how many changes were written.
  void End(int count) {
    count_ = count;
    std::fill_n(Places() + count, kEnds, width_);
  }

  /// Places that may be written after the last one of the widest row.
  static constexpr int kSlack = 8;

 private:
  static constexpr int kBefore = 4;
  /// Enough for a search by pairs and for copies of several places at a time.
  static constexpr int kEnds = 4;
  static constexpr int kBehind = kSlack + kEnds + 2;

  std::vector<int32_t> places_;
  int width_;
  int count_ = 0;
};

}  // namespace rasterkit::detail
