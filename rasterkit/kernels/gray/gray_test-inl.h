// Which lanes of pixels lie on a side of the gray scale. For kernel files only, which include it
// once for each SIMD target.
#if defined(RASTERKIT_GRAY_TEST_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef RASTERKIT_GRAY_TEST_INL
#undef RASTERKIT_GRAY_TEST_INL
#else
#define RASTERKIT_GRAY_TEST_INL
#endif

#include <algorithm>
#include <span>

#include <rasterkit/kernels/gray/gray_exceptions.h>
#include <rasterkit/kernels/rows/pixel_lanes-inl.h>

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR

/// Asks lanes B G R and anything whether their gray is `level` or more.
///
/// It is where 297 r + 589 g + 114 b reaches 1000 times the level; only where it equals that do the
/// level's few exceptions count, colors whose gray is one less.
struct GrayTest {
  WordVector blueRed, green;
  SignedLaneVector least, justBelow;
  std::span<const uint32_t> exceptions;
};

HWY_INLINE GrayTest MakeGrayTest(int level) {
  level = std::clamp(level, 0, 256);
  return {hn::OddEven(hn::Set(Words(), 297), hn::Set(Words(), 114)),
          hn::OddEven(hn::Zero(Words()), hn::Set(Words(), 589)),
          hn::Set(SignedLanes(), 1000 * level), hn::Set(SignedLanes(), 1000 * level - 1),
          GrayExceptionsOf(level)};
}

HWY_INLINE SignedLaneVector Thousandths(const GrayTest& test, LaneVector bgr) {
  const hn::RebindToUnsigned<Words> words;
  const auto blueRed = hn::And(bgr, hn::Set(Lanes(), 0x00FF00FF));
  const auto green = hn::BitCast(Lanes(), hn::ShiftRight<8>(hn::BitCast(words, bgr)));
  return hn::Add(SumOfProducts(hn::BitCast(Words(), blueRed), test.blueRed),
                 SumOfProducts(hn::BitCast(Words(), green), test.green));
}

HWY_INLINE LaneMask Reaches(const GrayTest& test, LaneVector sum) {
  return hn::RebindMask(Lanes(), hn::Gt(hn::BitCast(SignedLanes(), sum), test.justBelow));
}

HWY_INLINE bool NoneIsEqual(const GrayTest& test, const Quad& sums) {
  const auto least = hn::BitCast(Lanes(), test.least);
  return NoneIsSet({hn::Eq(sums.v0, least), hn::Eq(sums.v1, least), hn::Eq(sums.v2, least),
                    hn::Eq(sums.v3, least)});
}

HWY_INLINE LaneMask WithoutExceptions(const GrayTest& test, LaneVector bgr, LaneMask mask) {
  const auto color = hn::And(bgr, hn::Set(Lanes(), 0xFFFFFF));
  for (const uint32_t exception : test.exceptions) {
    mask = hn::AndNot(hn::Eq(color, hn::Set(Lanes(), exception)), mask);
  }
  return mask;
}

HWY_INLINE QuadMask IsAtLeast(const GrayTest& test, const Quad& bgr) {
  const Quad sums =
      ForEach([&test](LaneVector v) { return hn::BitCast(Lanes(), Thousandths(test, v)); }, bgr);
  const QuadMask mask{Reaches(test, sums.v0), Reaches(test, sums.v1), Reaches(test, sums.v2),
                      Reaches(test, sums.v3)};
  if (test.exceptions.empty() || HWY_LIKELY(NoneIsEqual(test, sums))) return mask;
  return {WithoutExceptions(test, bgr.v0, mask.m0), WithoutExceptions(test, bgr.v1, mask.m1),
          WithoutExceptions(test, bgr.v2, mask.m2), WithoutExceptions(test, bgr.v3, mask.m3)};
}

#endif  // HWY_TARGET != HWY_SCALAR

}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
