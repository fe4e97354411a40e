#include <rasterkit/kernels/mix/swap_alpha.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/mix/swap_alpha.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

void SwapOneByOne(uint8_t* bgra, size_t count) {
  for (size_t i = 0; i < count; ++i) bgra[4 * i + 3] = bgra[4 * i + 3] == 0 ? 255 : 0;
}

#if HWY_TARGET == HWY_SCALAR

void Swap(uint8_t* bgra, size_t count) {
  SwapOneByOne(bgra, count);
}

#else

using Bytes = hn::ScalableTag<uint8_t>;
using Pixels = hn::Repartition<uint32_t, Bytes>;

constexpr uint32_t kAlpha = 0xFF000000;
/// A pixel is a little-endian number with the alpha on top: below this one it has none.
constexpr uint32_t kLeastAlpha = 1u << 24;

void Swap(uint8_t* bgra, size_t count) {
  const Bytes bytes;
  const Pixels d;
  const size_t lanes = hn::Lanes(d);
  const auto alpha = hn::Set(d, kAlpha);
  size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto pixels = hn::BitCast(d, hn::LoadU(bytes, bgra + 4 * i));
    const auto isClear = hn::Lt(pixels, hn::Set(d, kLeastAlpha));
    const auto colors = hn::AndNot(alpha, pixels);
    const auto swapped = hn::Or(colors, hn::IfThenElseZero(isClear, alpha));
    hn::StoreU(hn::BitCast(bytes, swapped), bytes, bgra + 4 * i);
  }
  SwapOneByOne(bgra + 4 * i, count - i);
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Swap);

}  // namespace

void SwapAlpha32(uint8_t* bgra, size_t count) {
  HWY_DYNAMIC_DISPATCH(Swap)(bgra, count);
}

}  // namespace rasterkit::kernels
#endif
