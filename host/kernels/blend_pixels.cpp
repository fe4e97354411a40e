#include <cstring>

#include <rasterkit/host/kernels/blend_pixels.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/host/kernels/blend_pixels.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels {
namespace HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <size_t kTargetBytes>
void BlendOneByOne(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  for (size_t x = 0; x < width; ++x, source += 4, target += kTargetBytes) {
    const unsigned weight = (opacity.pixelAlpha ? source[3] : 255u) * opacity.constant;
    for (size_t c = 0; c < 3; ++c) target[c] = BlendChannel(source[c], target[c], weight);
    if constexpr (kTargetBytes == 4) target[3] = BlendChannel(255, target[3], weight);
  }
}

// The emulated target has no interleaved loads worth their price.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

template <size_t kTargetBytes>
void BlendRow(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  BlendOneByOne<kTargetBytes>(source, width, opacity, target);
}

#else

using Bytes = hn::ScalableTag<uint8_t>;
using Words = hn::Repartition<uint16_t, Bytes>;
using Lanes = hn::Repartition<int32_t, Bytes>;
using Floats = hn::Repartition<float, Bytes>;
using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;

constexpr size_t kMaxPixels = hn::MaxLanes(Bytes());

/// Every second byte as a word.
HWY_INLINE WordVector EvenBytes(ByteVector v) {
  return hn::And(hn::BitCast(Words(), v), hn::Set(Words(), 0xFF));
}
HWY_INLINE WordVector OddBytes(ByteVector v) {
  return hn::ShiftRight<8>(hn::BitCast(Words(), v));
}

/// 256 times the rounded 255th part of s w + t (255 - w), with a rest below 256: x / 255 rounded is
/// (x + 128 + (x + 128) / 256) / 256 cut, for all x up to 255 * 255.
HWY_INLINE WordVector MixWords(WordVector s, WordVector t, WordVector w) {
  const auto rest = hn::Sub(hn::Set(Words(), 255), w);
  const auto sum = hn::Add(hn::Mul(s, w), hn::Mul(t, rest));
  const auto raised = hn::Add(sum, hn::Set(Words(), 128));
  return hn::Add(raised, hn::ShiftRight<8>(raised));
}

HWY_INLINE ByteVector Mix(ByteVector s, ByteVector t, WordVector evenWeight, WordVector oddWeight) {
  const auto even = MixWords(EvenBytes(s), EvenBytes(t), evenWeight);
  const auto odd = MixWords(OddBytes(s), OddBytes(t), oddWeight);
  const auto top = hn::And(odd, hn::Set(Words(), 0xFF00));
  return hn::BitCast(Bytes(), hn::Or(hn::ShiftRight<8>(even), top));
}

/// A vector of pixels whose opacity is one byte: the pixel's own or the constant.
template <size_t kTargetBytes>
HWY_INLINE void BlendBlockByByte(const uint8_t* source, Opacity opacity, uint8_t* target) {
  const Bytes d;
  ByteVector sb, sg, sr, sa, tb, tg, tr;
  hn::LoadInterleaved4(d, source, sb, sg, sr, sa);
  const auto weight = opacity.pixelAlpha ? sa : hn::Set(d, opacity.constant);
  if (hn::AllTrue(d, hn::Eq(weight, hn::Zero(d)))) return;
  const auto even = EvenBytes(weight), odd = OddBytes(weight);
  if constexpr (kTargetBytes == 3) {
    hn::LoadInterleaved3(d, target, tb, tg, tr);
    hn::StoreInterleaved3(Mix(sb, tb, even, odd), Mix(sg, tg, even, odd), Mix(sr, tr, even, odd), d,
                          target);
  } else {
    ByteVector ta;
    hn::LoadInterleaved4(d, target, tb, tg, tr, ta);
    hn::StoreInterleaved4(Mix(sb, tb, even, odd), Mix(sg, tg, even, odd), Mix(sr, tr, even, odd),
                          Mix(hn::Set(d, 255), ta, even, odd), d, target);
  }
}

/// As many pixels as a vector has lanes of 32 bits, of one channel.
HWY_INLINE void MixLanes(const uint8_t* s, const uint8_t* alpha, uint8_t constant, uint8_t* t) {
  constexpr int32_t kWhole = 255 * 255;
  const Lanes d;
  const Floats floats;
  const hn::Rebind<uint8_t, Lanes> bytes;
  const auto whole = hn::Set(d, kWhole);
  const auto weight =
      hn::Mul(hn::PromoteTo(d, hn::LoadU(bytes, alpha)), hn::Set(d, int32_t{constant}));
  const auto there = hn::PromoteTo(d, hn::LoadU(bytes, t));
  const auto drawn = hn::PromoteTo(d, hn::LoadU(bytes, s));
  const auto sum = hn::Add(hn::Add(hn::Mul(drawn, weight), hn::Mul(there, hn::Sub(whole, weight))),
                           hn::Set(d, kWhole / 2));
  // Sums take 24 bits, so the conversion is exact; the factor is a little too small, so the
  // quotient is right or short by one, which its remainder tells.
  constexpr float kFactor = 1.0f / kWhole * (1 - 1.0f / (1 << 22));
  const auto quotient =
      hn::ConvertTo(d, hn::Mul(hn::ConvertTo(floats, sum), hn::Set(floats, kFactor)));
  const auto remainder = hn::Sub(sum, hn::Mul(quotient, whole));
  const auto short1 =
      hn::VecFromMask(d, hn::Gt(remainder, hn::Set(d, kWhole - 1)));  // -1 where it is short
  hn::StoreU(hn::DemoteTo(bytes, hn::Sub(quotient, short1)), bytes, t);
}

/// A vector of pixels whose opacity is a product of two bytes.
template <size_t kTargetBytes>
HWY_INLINE void BlendBlockByProduct(const uint8_t* source, Opacity opacity, uint8_t* target) {
  const Bytes d;
  HWY_ALIGN uint8_t s[4][kMaxPixels], t[4][kMaxPixels];
  ByteVector sb, sg, sr, sa, tb, tg, tr, ta = hn::Zero(d);
  hn::LoadInterleaved4(d, source, sb, sg, sr, sa);
  if (hn::AllTrue(d, hn::Eq(sa, hn::Zero(d)))) return;
  if constexpr (kTargetBytes == 3) {
    hn::LoadInterleaved3(d, target, tb, tg, tr);
  } else {
    hn::LoadInterleaved4(d, target, tb, tg, tr, ta);
  }
  hn::Store(sb, d, s[0]), hn::Store(sg, d, s[1]), hn::Store(sr, d, s[2]);
  hn::Store(hn::Set(d, 255), d, s[3]);
  hn::Store(tb, d, t[0]), hn::Store(tg, d, t[1]), hn::Store(tr, d, t[2]), hn::Store(ta, d, t[3]);
  HWY_ALIGN uint8_t alpha[kMaxPixels];
  hn::Store(sa, d, alpha);
  for (size_t c = 0; c < kTargetBytes; ++c)
    for (size_t i = 0; i < hn::Lanes(d); i += hn::Lanes(Lanes()))
      MixLanes(s[c] + i, alpha + i, opacity.constant, t[c] + i);
  tb = hn::Load(d, t[0]), tg = hn::Load(d, t[1]), tr = hn::Load(d, t[2]);
  if constexpr (kTargetBytes == 3) {
    hn::StoreInterleaved3(tb, tg, tr, d, target);
  } else {
    hn::StoreInterleaved4(tb, tg, tr, hn::Load(d, t[3]), d, target);
  }
}

template <size_t kTargetBytes, bool kByProduct>
HWY_INLINE void BlendBlock(const uint8_t* source, Opacity opacity, uint8_t* target) {
  if constexpr (kByProduct) {
    BlendBlockByProduct<kTargetBytes>(source, opacity, target);
  } else {
    BlendBlockByByte<kTargetBytes>(source, opacity, target);
  }
}

/// Whole vectors, and what is left in a vector of its own, since a pixel must not be mixed twice.
template <size_t kTargetBytes, bool kByProduct>
void BlendBlocks(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  const size_t step = hn::Lanes(Bytes());
  for (; width >= step; width -= step, source += 4 * step, target += kTargetBytes * step)
    BlendBlock<kTargetBytes, kByProduct>(source, opacity, target);
  if (width == 0) return;
  HWY_ALIGN uint8_t restSource[4 * kMaxPixels] = {}, restTarget[4 * kMaxPixels] = {};
  std::memcpy(restSource, source, 4 * width);
  std::memcpy(restTarget, target, kTargetBytes * width);
  BlendBlock<kTargetBytes, kByProduct>(restSource, opacity, restTarget);
  std::memcpy(target, restTarget, kTargetBytes * width);
}

template <size_t kTargetBytes>
void BlendRow(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  if (width < 8) {
    BlendOneByOne<kTargetBytes>(source, width, opacity, target);
  } else if (opacity.pixelAlpha && opacity.constant != 255) {
    BlendBlocks<kTargetBytes, true>(source, width, opacity, target);
  } else {
    BlendBlocks<kTargetBytes, false>(source, width, opacity, target);
  }
}

#endif

void Over24(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  BlendRow<3>(source, width, opacity, target);
}

void Over32(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  BlendRow<4>(source, width, opacity, target);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace rasterkit::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Over24);
HWY_EXPORT(Over32);

}  // namespace

void Blend32Over24(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Over24)(source, width, opacity, target);
}

void Blend32Over32(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Over32)(source, width, opacity, target);
}

}  // namespace rasterkit::kernels
#endif
