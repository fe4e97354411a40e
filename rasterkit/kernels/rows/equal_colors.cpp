#include <rasterkit/kernels/rows/equal_colors.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/rows/equal_colors.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

bool EqualOneByOne(const uint8_t* a, const uint8_t* b, size_t count) {
  unsigned differences = 0;
  for (size_t i = 0; i < 4 * count; i += 4) {
    differences |= (a[i] ^ b[i]) | (a[i + 1] ^ b[i + 1]) | (a[i + 2] ^ b[i + 2]);
  }
  return differences == 0;
}

#if HWY_TARGET == HWY_SCALAR

bool Equal(const uint8_t* a, const uint8_t* b, size_t count) {
  constexpr size_t kStep = 64;
  size_t i = 0;
  for (; i + kStep <= count; i += kStep) {
    if (!EqualOneByOne(a + 4 * i, b + 4 * i, kStep)) return false;
  }
  return EqualOneByOne(a + 4 * i, b + 4 * i, count - i);
}

#else

using Bytes = hn::ScalableTag<uint8_t>;
using Pixels = hn::Repartition<uint32_t, Bytes>;

HWY_INLINE hn::Vec<Pixels> Differences(const uint8_t* a, const uint8_t* b) {
  const Bytes d;
  return hn::BitCast(Pixels(), hn::Xor(hn::LoadU(d, a), hn::LoadU(d, b)));
}

bool Equal(const uint8_t* a, const uint8_t* b, size_t count) {
  const Pixels d;
  const size_t lanes = hn::Lanes(d), bytes = 4 * lanes;
  const auto colors = hn::Set(d, 0x00FFFFFFu);
  size_t i = 0;
  // One test for four vectors: their differences are gathered first.
  for (; i + 4 * lanes <= count; i += 4 * lanes) {
    const uint8_t *p = a + 4 * i, *q = b + 4 * i;
    const auto first = hn::Or(Differences(p, q), Differences(p + bytes, q + bytes));
    const auto second = hn::Or(Differences(p + 2 * bytes, q + 2 * bytes),
                               Differences(p + 3 * bytes, q + 3 * bytes));
    const auto any = hn::And(hn::Or(first, second), colors);
    if (!hn::AllTrue(d, hn::Eq(any, hn::Zero(d)))) return false;
  }
  return EqualOneByOne(a + 4 * i, b + 4 * i, count - i);
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Equal);

}  // namespace

bool EqualColors32(const uint8_t* a, const uint8_t* b, size_t count) {
  return HWY_DYNAMIC_DISPATCH(Equal)(a, b, count);
}

}  // namespace rasterkit::kernels
#endif
