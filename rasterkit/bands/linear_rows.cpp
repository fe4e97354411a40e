#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <type_traits>

#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/bands/linear_rows.h>

namespace rasterkit::detail {
namespace {

constexpr int kCorners = 4;
constexpr double kSteps = 65536;

/// The four pixels around a place and how much each counts; all weights together are 2^32.
struct Corners {
  std::array<int, kCorners> columns, rows;
  std::array<bool, kCorners> isInside;
  std::array<uint64_t, kCorners> weights;
  /// The corner that is nearest to the place.
  size_t nearest = 0;

  bool AreOutside() const { return !isInside[0] && !isInside[1] && !isInside[2] && !isInside[3]; }
};

template <class T>
class LinearRowsOf : public LinearRows {
 public:
  static constexpr bool kIsExact = std::is_same_v<T, uint8_t> || std::is_same_v<T, uint16_t>;
  using Sum = std::conditional_t<kIsExact, uint64_t, double>;

  LinearRowsOf(const BandRows& source, const LinearTask& task)
      : source_(source),
        task_(task),
        missing_(source.HasStraightAlpha() ? std::nullopt : task.noData) {}

  void Make(int y, int left, int width, uint8_t* target) const override {
    const double columnOfRow = task_.toOld.xPerRow * y + task_.toOld.x;
    const double rowOfRow = task_.toOld.yPerRow * y + task_.toOld.y;
    for (int x = left; x < left + width; ++x, target += source_.PixelBytes()) {
      const Corners corners = CornersAt(task_.toOld.xPerColumn * x + columnOfRow,
                                        task_.toOld.yPerColumn * x + rowOfRow);
      if (source_.HasStraightAlpha()) {
        PutByOpacity(corners, target);
      } else {
        for (int band = 0; band < source_.Bands(); ++band) Put(band, Mean(corners, band), target);
      }
    }
  }

 private:
  /// Far places stay outside, within the range of whole numbers.
  static double Limited(double place, int size) { return std::clamp(place, -2.0, size + 1.0); }

  Corners CornersAt(double column, double row) const {
    column = Limited(column, source_.Whole().width);
    row = Limited(row, source_.Whole().height);
    const double left = std::floor(column), top = std::floor(row);
    const auto right = static_cast<uint64_t>(std::floor((column - left) * kSteps + 0.5));
    const auto down = static_cast<uint64_t>(std::floor((row - top) * kSteps + 0.5));
    const auto whole = static_cast<uint64_t>(kSteps);
    Corners corners;
    for (size_t i = 0; i < kCorners; ++i) {
      const bool isRight = i % 2 == 1, isLower = i / 2 == 1;
      const int x = static_cast<int>(left) + (isRight ? 1 : 0);
      const int y = static_cast<int>(top) + (isLower ? 1 : 0);
      corners.columns[i] = std::clamp(x, 0, source_.Whole().width - 1);
      corners.rows[i] = std::clamp(y, 0, source_.Whole().height - 1);
      corners.isInside[i] = task_.isClamped || (x == corners.columns[i] && y == corners.rows[i]);
      corners.weights[i] = (isRight ? right : whole - right) * (isLower ? down : whole - down);
      if (corners.weights[i] > corners.weights[corners.nearest]) corners.nearest = i;
    }
    return corners;
  }

  T NumberAt(const Corners& corners, size_t i, int band) const {
    const uint8_t* place = corners.isInside[i]
                               ? source_.At(corners.columns[i], corners.rows[i], band)
                               : task_.fill + static_cast<size_t>(band) * sizeof(T);
    T number = LoadNumber<T>(place);
    if constexpr (kIsExact) {
      if (source_.HasMovedSign(band)) number ^= static_cast<T>(1u << (8 * sizeof(T) - 1));
    }
    return number;
  }

  static Sum SumOf(T number) {
    if constexpr (kIsExact) {
      return Sum(number);
    } else {
      return ValueOf(number);
    }
  }

  static T Quotient(Sum sum, Sum divisor) {
    if constexpr (kIsExact) {
      return static_cast<T>((sum + divisor / 2) / divisor);
    } else {
      return NumberOf<T>(sum / divisor);
    }
  }

  T Mean(const Corners& corners, int band) const {
    const T nearest = NumberAt(corners, corners.nearest, band);
    if (corners.AreOutside() || missing_.Is(nearest)) return nearest;
    Sum sum{}, weights{};
    for (size_t i = 0; i < kCorners; ++i) {
      const T number = NumberAt(corners, i, band);
      if (corners.weights[i] == 0 || missing_.Is(number)) continue;
      sum += Sum(corners.weights[i]) * SumOf(number);
      weights += Sum(corners.weights[i]);
    }
    return Quotient(sum, weights);
  }

  void PutByOpacity(const Corners& corners, uint8_t* target) const {
    const int last = source_.Bands() - 1;
    std::array<Sum, kCorners> opacities;
    Sum weights{}, opacity{};
    for (size_t i = 0; i < kCorners; ++i) {
      opacities[i] = Sum(corners.weights[i]) * SumOf(NumberAt(corners, i, last));
      weights += Sum(corners.weights[i]);
      opacity += opacities[i];
    }
    for (int band = 0; band < last; ++band) {
      Sum sum{};
      for (size_t i = 0; i < kCorners; ++i) {
        const Sum weight = opacity == Sum{} ? Sum(corners.weights[i]) : opacities[i];
        sum += weight * SumOf(NumberAt(corners, i, band));
      }
      Put(band, Quotient(sum, opacity == Sum{} ? weights : opacity), target);
    }
    Put(last, Quotient(opacity, weights), target);
  }

  static void Put(int band, T number, uint8_t* target) {
    std::memcpy(target + static_cast<size_t>(band) * sizeof number, &number, sizeof number);
  }

  const BandRows& source_;
  const LinearTask& task_;
  const MissingNumber<T> missing_;
};

}  // namespace

std::unique_ptr<LinearRows> MakeLinearRows(const BandRows& source, const LinearTask& task) {
  return WithNumberType(source.Type(), [&](auto zero) -> std::unique_ptr<LinearRows> {
    return std::make_unique<LinearRowsOf<decltype(zero)>>(source, task);
  });
}

}  // namespace rasterkit::detail
