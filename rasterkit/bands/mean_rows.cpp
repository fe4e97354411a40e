#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>
#include <vector>

#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/bands/mean_rows.h>

namespace rasterkit::detail {
namespace {

using kernels::HalftoneAxis;
using kernels::HalftoneTap;

/// Sums of 16-bit numbers times opacity times the weights of both axes take up to 78 bits.
__extension__ using Wide = unsigned __int128;

template <class T>
inline constexpr bool kIsExact = std::is_same_v<T, uint8_t> || std::is_same_v<T, uint16_t>;

uint32_t WeightOf(const HalftoneTap& tap, int i, uint32_t innerWeight) {
  if (i == 0) return tap.firstWeight;
  return i + 1 < tap.count ? innerWeight : tap.lastWeight;
}

/// Weighted sum of one band over the columns of a tap.
template <class Total, class Sum>
Total SumColumns(const Sum* sums, size_t step, const HalftoneTap& tap, uint32_t innerWeight) {
  sums += static_cast<size_t>(tap.first) * step;
  Total total = Total(tap.firstWeight) * Total(*sums);
  if (tap.count == 1) return total;
  if (tap.count > 2) {
    Total between{};
    for (int i = 1; i + 1 < tap.count; ++i) between += Total(sums[static_cast<size_t>(i) * step]);
    total += Total(innerWeight) * between;
  }
  return total + Total(tap.lastWeight) * Total(sums[static_cast<size_t>(tap.count - 1) * step]);
}

template <class T, class Total>
T Quotient(Total sum, Total divisor) {
  if constexpr (std::is_same_v<Total, double>) {
    return NumberOf<T>(sum / divisor);
  } else {
    return static_cast<T>((sum + divisor / 2) / divisor);
  }
}

/// Every number counts.
template <class T>
class PlainMeans : public MeanRows {
 public:
  using Sum = std::conditional_t<std::is_same_v<T, uint8_t>, uint32_t,
                                 std::conditional_t<kIsExact<T>, uint64_t, double>>;
  using Total = std::conditional_t<kIsExact<T>, uint64_t, double>;

  PlainMeans(const BandRows& source, const MeanAxes& axes)
      : source_(source),
        axes_(axes),
        bands_(static_cast<size_t>(source.Bands())),
        sums_(static_cast<size_t>(source.Rect().width) * bands_) {}

  void Make(int y, uint8_t* target) override {
    const HalftoneTap& rows = axes_.rows.taps[static_cast<size_t>(y)];
    for (int i = 0; i < rows.count; ++i) {
      AddRow(rows.first + i, WeightOf(rows, i, axes_.rows.innerWeight), i == 0);
    }
    const Total total = Total(axes_.rows.total) * Total(axes_.columns.total);
    for (const HalftoneTap& tap : axes_.columns.taps) {
      for (size_t band = 0; band < bands_; ++band, target += sizeof(T)) {
        const auto sum =
            SumColumns<Total>(sums_.data() + band, bands_, tap, axes_.columns.innerWeight);
        const T mean = Quotient<T>(sum, total);
        std::memcpy(target, &mean, sizeof mean);
      }
    }
  }

 private:
  void AddRow(int y, uint32_t weight, bool isFirst) {
    const uint8_t* row = source_.Load(y, room_);
    Sum* sums = sums_.data();
    const size_t count = sums_.size();
    const Sum factor = Sum(weight);
    if (isFirst) {
      for (size_t i = 0; i < count; ++i) {
        sums[i] = factor * Sum(ValueAt(row, i));
      }
    } else {
      for (size_t i = 0; i < count; ++i) sums[i] += factor * Sum(ValueAt(row, i));
    }
  }
  static auto ValueAt(const uint8_t* row, size_t i) {
    const T number = LoadNumber<T>(row + i * sizeof(T));
    if constexpr (kIsExact<T>) {
      return number;
    } else {
      return ValueOf(number);
    }
  }

  const BandRows& source_;
  const MeanAxes& axes_;
  const size_t bands_;
  std::vector<Sum> sums_;
  std::vector<uint8_t> room_;
};

/// Numbers that were not measured do not count.
template <class T>
class MeasuredMeans : public MeanRows {
 public:
  using Sum = std::conditional_t<kIsExact<T>, uint64_t, double>;

  MeasuredMeans(const BandRows& source, const MeanAxes& axes, const MissingNumber<T>& missing)
      : source_(source),
        axes_(axes),
        missing_(missing),
        bands_(static_cast<size_t>(source.Bands())),
        sums_(static_cast<size_t>(source.Rect().width) * bands_),
        weights_(sums_.size()) {}

  void Make(int y, uint8_t* target) override {
    std::fill(sums_.begin(), sums_.end(), Sum{});
    std::fill(weights_.begin(), weights_.end(), uint64_t{0});
    const HalftoneTap& rows = axes_.rows.taps[static_cast<size_t>(y)];
    for (int i = 0; i < rows.count; ++i) {
      AddRow(rows.first + i, WeightOf(rows, i, axes_.rows.innerWeight));
    }
    const uint32_t inner = axes_.columns.innerWeight;
    for (const HalftoneTap& tap : axes_.columns.taps) {
      for (size_t band = 0; band < bands_; ++band, target += sizeof(T)) {
        const auto weight = SumColumns<uint64_t>(weights_.data() + band, bands_, tap, inner);
        T mean = missing_.Number();
        if (weight != 0) {
          mean = Quotient<T>(SumColumns<Sum>(sums_.data() + band, bands_, tap, inner), Sum(weight));
        }
        std::memcpy(target, &mean, sizeof mean);
      }
    }
  }

 private:
  void AddRow(int y, uint32_t weight) {
    const uint8_t* row = source_.Load(y, room_);
    for (size_t i = 0; i < sums_.size(); ++i) {
      const T number = LoadNumber<T>(row + i * sizeof(T));
      if (missing_.Is(number)) continue;
      weights_[i] += weight;
      if constexpr (kIsExact<T>) {
        sums_[i] += Sum(weight) * number;
      } else {
        sums_[i] += Sum(weight) * ValueOf(number);
      }
    }
  }

  const BandRows& source_;
  const MeanAxes& axes_;
  const MissingNumber<T> missing_;
  const size_t bands_;
  std::vector<Sum> sums_;
  std::vector<uint64_t> weights_;
  std::vector<uint8_t> room_;
};

/// Colors count by the opacity that follows them.
template <class T>
class OpacityMeans : public MeanRows {
 public:
  using Sum = std::conditional_t<kIsExact<T>, uint64_t, double>;
  using Total = std::conditional_t<std::is_same_v<T, uint8_t>, uint64_t,
                                   std::conditional_t<std::is_same_v<T, uint16_t>, Wide, double>>;

  OpacityMeans(const BandRows& source, const MeanAxes& axes)
      : source_(source),
        axes_(axes),
        bands_(static_cast<size_t>(source.Bands())),
        plain_(static_cast<size_t>(source.Rect().width) * bands_),
        weighted_(plain_.size()) {}

  void Make(int y, uint8_t* target) override {
    std::fill(plain_.begin(), plain_.end(), Sum{});
    std::fill(weighted_.begin(), weighted_.end(), Sum{});
    const HalftoneTap& rows = axes_.rows.taps[static_cast<size_t>(y)];
    for (int i = 0; i < rows.count; ++i) {
      AddRow(rows.first + i, WeightOf(rows, i, axes_.rows.innerWeight));
    }
    const Total total = Total(axes_.rows.total) * Total(axes_.columns.total);
    for (const HalftoneTap& tap : axes_.columns.taps) {
      MakePixel(tap, total, target);
      target += bands_ * sizeof(T);
    }
  }

 private:
  void MakePixel(const HalftoneTap& tap, Total total, uint8_t* target) const {
    const uint32_t inner = axes_.columns.innerWeight;
    const size_t last = bands_ - 1;
    const auto opacity = SumColumns<Total>(plain_.data() + last, bands_, tap, inner);
    for (size_t band = 0; band < bands_; ++band) {
      const bool isPlain = band == last || opacity == Total{};
      const auto& sums = isPlain ? plain_ : weighted_;
      const auto sum = SumColumns<Total>(sums.data() + band, bands_, tap, inner);
      const T mean = Quotient<T>(sum, isPlain ? total : opacity);
      std::memcpy(target + band * sizeof(T), &mean, sizeof mean);
    }
  }

  void AddRow(int y, uint32_t weight) {
    const uint8_t* row = source_.Load(y, room_);
    for (size_t i = 0; i < plain_.size(); i += bands_) {
      const auto value = [&](size_t band) {
        const T number = LoadNumber<T>(row + (i + band) * sizeof(T));
        if constexpr (kIsExact<T>) {
          return Sum(number);
        } else {
          return ValueOf(number);
        }
      };
      const Sum opacity = Sum(weight) * value(bands_ - 1);
      for (size_t band = 0; band < bands_; ++band) {
        plain_[i + band] += Sum(weight) * value(band);
        weighted_[i + band] += opacity * value(band);
      }
    }
  }

  const BandRows& source_;
  const MeanAxes& axes_;
  const size_t bands_;
  std::vector<Sum> plain_, weighted_;
  std::vector<uint8_t> room_;
};

}  // namespace

std::unique_ptr<MeanRows> MakeMeanRows(const BandRows& source, const MeanAxes& axes,
                                       std::optional<double> noData) {
  return WithNumberType(source.Type(), [&](auto zero) -> std::unique_ptr<MeanRows> {
    using T = decltype(zero);
    if (source.HasStraightAlpha()) return std::make_unique<OpacityMeans<T>>(source, axes);
    const MissingNumber<T> missing(noData);
    if (missing.Exists()) return std::make_unique<MeasuredMeans<T>>(source, axes, missing);
    return std::make_unique<PlainMeans<T>>(source, axes);
  });
}

}  // namespace rasterkit::detail
