#if defined(RASTERKIT_KERNELS_FILTERS_PAETH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef RASTERKIT_KERNELS_FILTERS_PAETH_INL_H_
#undef RASTERKIT_KERNELS_FILTERS_PAETH_INL_H_
#else
#define RASTERKIT_KERNELS_FILTERS_PAETH_INL_H_
#endif

#include <cstdint>
#include <cstdlib>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

/// The guess of one byte from its neighbors.
inline uint8_t PaethOf(uint8_t left, uint8_t above, uint8_t corner) {
  const int toLeft = std::abs(above - corner), toAbove = std::abs(left - corner);
  const int toCorner = std::abs(left + above - 2 * corner);
  if (toLeft <= toAbove && toLeft <= toCorner) return left;
  return toAbove <= toCorner ? above : corner;
}

inline uint8_t MeanOf(uint8_t left, uint8_t above) {
  return static_cast<uint8_t>((left + above) >> 1);
}

#if HWY_TARGET != HWY_SCALAR

/// The same for lanes, in 8 bits: where left and above lie on the same side of the corner, the
/// distances add up; saturation changes no comparison. Else they are subtracted.
template <class V>
HWY_INLINE V PaethLanes(V left, V above, V corner) {
  namespace hn = hwy::HWY_NAMESPACE;
  const auto mostAbove = hn::Max(above, corner), mostLeft = hn::Max(left, corner);
  const auto toLeft = hn::Sub(mostAbove, hn::Min(above, corner));
  const auto toAbove = hn::Sub(mostLeft, hn::Min(left, corner));
  const auto isAbove = hn::VecFromMask(hn::DFromV<V>(), hn::Eq(mostAbove, above));
  const auto isLeft = hn::VecFromMask(hn::DFromV<V>(), hn::Eq(mostLeft, left));
  const auto least = hn::Min(toLeft, toAbove);
  const auto apart = hn::Sub(hn::Max(toLeft, toAbove), least);
  const auto toCorner =
      hn::IfThenElse(hn::Eq(isAbove, isLeft), hn::SaturatedAdd(toLeft, toAbove), apart);
  const auto other = hn::IfThenElse(hn::Eq(hn::Min(toAbove, toCorner), toAbove), above, corner);
  return hn::IfThenElse(hn::Eq(hn::Min(least, toCorner), toLeft), left, other);
}

/// The mean, rounded down.
template <class V>
HWY_INLINE V MeanLanes(V left, V above) {
  namespace hn = hwy::HWY_NAMESPACE;
  const auto one = hn::Set(hn::DFromV<V>(), uint8_t{1});
  return hn::Sub(hn::AverageRound(left, above), hn::And(hn::Xor(left, above), one));
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
