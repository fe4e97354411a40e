// Included by kernels once for each target: bytes as pairs of numbers, and the slope of a ByteMap.

#if defined(RASTERKIT_SLOPE_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef RASTERKIT_SLOPE_INL
#undef RASTERKIT_SLOPE_INL
#else
#define RASTERKIT_SLOPE_INL
#endif

#include <hwy/highway.h>

#include <rasterkit/kernels/rows/byte_map.h>

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

#if HWY_TARGET != HWY_SCALAR

using Bytes = hwy::HWY_NAMESPACE::ScalableTag<uint8_t>;
using Words = hwy::HWY_NAMESPACE::Repartition<int16_t, Bytes>;
using UnsignedWords = hwy::HWY_NAMESPACE::Repartition<uint16_t, Bytes>;
using ByteVector = hwy::HWY_NAMESPACE::Vec<Bytes>;
using WordVector = hwy::HWY_NAMESPACE::Vec<Words>;

/// Every other byte as a number: the first, third, fifth ...
HWY_INLINE WordVector EvenBytes(ByteVector v) {
  namespace hn = hwy::HWY_NAMESPACE;
  return hn::And(hn::BitCast(Words(), v), hn::Set(Words(), 0xFF));
}

/// ... and the second, fourth, sixth.
HWY_INLINE WordVector OddBytes(ByteVector v) {
  namespace hn = hwy::HWY_NAMESPACE;
  return hn::BitCast(Words(), hn::ShiftRight<8>(hn::BitCast(UnsignedWords(), v)));
}

/// Numbers from 0 to 255 back to bytes; of the odd ones the low byte counts.
HWY_INLINE ByteVector JoinBytes(WordVector even, WordVector odd) {
  namespace hn = hwy::HWY_NAMESPACE;
  return hn::BitCast(Bytes(), hn::Or(even, hn::ShiftLeft<8>(odd)));
}

/// The slope form of a ByteMap.
struct Slope {
  explicit Slope(const ByteMap& map)
      : origin(hwy::HWY_NAMESPACE::Set(Words(), map.origin)),
        whole(hwy::HWY_NAMESPACE::Set(Words(), map.whole)),
        offset(
            hwy::HWY_NAMESPACE::Set(Words(), static_cast<int16_t>(map.origin * (1 - map.whole)))),
        low(hwy::HWY_NAMESPACE::Set(Words(), map.low)),
        high(hwy::HWY_NAMESPACE::Set(Words(), map.high)) {}

  /// `kHalvesToEven` when `low` and `high` differ: they lie so close to the exact factor, on either
  /// side of it or one of them on it, that the two rounded parts differ (by 1) where the exact part
  /// is a half and nowhere else. There the even one of both sums is taken. When they are equal,
  /// that one factor rounds all that there is to round as the table does.
  template <bool kHalvesToEven>
  HWY_INLINE WordVector Map(WordVector bytes) const {
    namespace hn = hwy::HWY_NAMESPACE;
    const Words d;
    const auto x = hn::Sub(bytes, origin);
    const auto part = hn::MulFixedPoint15(x, low);
    auto sum = hn::Add(hn::Mul(bytes, whole), offset);
    if constexpr (kHalvesToEven) {
      const auto other = hn::MulFixedPoint15(x, high);
      const auto less = hn::Min(part, other);
      sum = hn::Add(sum, less);
      const auto isHalf = hn::Sub(hn::Max(part, other), less);  // 0 or 1
      sum = hn::Add(sum, hn::And(isHalf, sum));
    } else {
      sum = hn::Add(sum, part);
    }
    return hn::Min(hn::Max(sum, hn::Zero(d)), hn::Set(d, 255));
  }

  WordVector origin, whole, offset, low, high;
};

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
