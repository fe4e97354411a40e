#include <cstring>

#include <rasterkit/kernels/gray/whiten.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/gray/whiten.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

void WhitenOneByOne(uint8_t* bgra, size_t count) {
  for (size_t i = 0; i < count; ++i, bgra += 4) {
    if (bgra[3] == 0) std::memset(bgra, 0xFF, 4);
  }
}

#if HWY_TARGET == HWY_SCALAR

void Whiten(uint8_t* bgra, size_t count) {
  WhitenOneByOne(bgra, count);
}

#else

using Bytes = hn::ScalableTag<uint8_t>;
using Pixels = hn::Repartition<uint32_t, Bytes>;

/// A pixel is a little-endian number with the alpha on top: below this one it has none.
constexpr uint32_t kLeastAlpha = 1u << 24;

HWY_INLINE void WhitenVector(uint8_t* bgra) {
  const Pixels d;
  const auto pixels = hn::BitCast(d, hn::LoadU(Bytes(), bgra));
  const auto clear = hn::Lt(pixels, hn::Set(d, kLeastAlpha));
  if (hn::AllFalse(d, clear)) return;
  const auto white = hn::Set(d, ~uint32_t{0});
  hn::StoreU(hn::BitCast(Bytes(), hn::IfThenElse(clear, white, pixels)), Bytes(), bgra);
}

void Whiten(uint8_t* bgra, size_t count) {
  const size_t lanes = hn::Lanes(Pixels());
  if (count < lanes) return WhitenOneByOne(bgra, count);
  for (size_t i = 0; i + lanes <= count; i += lanes) WhitenVector(bgra + 4 * i);
  // What is white by now is left alone the second time.
  WhitenVector(bgra + 4 * (count - lanes));
}

#endif

}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {

HWY_EXPORT(Whiten);

void WhitenTransparentPixels(uint8_t* bgra, size_t count) {
  HWY_DYNAMIC_DISPATCH(Whiten)(bgra, count);
}

}  // namespace rasterkit::kernels
#endif
