#include <cstring>

#include <rasterkit/kernels/mix/blend_pixels.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/mix/blend_pixels.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

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

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;
using Words = hn::Repartition<uint16_t, Bytes>;
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

/// The rounded 65025th part of d w, for bytes d (in the high halves too: `raised` is 256 d) and
/// products w of two bytes. With 65025 = 254 * 256 + 1 all of it fits into words: d w + 32512 is
/// 256 `high` + `low`, and a quotient by 254 is right or, where its remainder does not cover it,
/// one too large.
HWY_INLINE WordVector ProductPart(WordVector d, WordVector raised, WordVector w) {
  const Words words;
  const auto low = hn::And(hn::Mul(d, w), hn::Set(words, 0xFF));
  const auto high = hn::Add(hn::MulHigh(raised, w), hn::Set(words, 127));
  // 33027 / 2^22 is a 127th, a little more: not enough to matter for 15 bits.
  const auto quotient =
      hn::ShiftRight<6>(hn::MulHigh(hn::ShiftRight<1>(high), hn::Set(words, 33027)));
  const auto rest = hn::Sub(high, hn::Mul(quotient, hn::Set(words, 254)));
  const auto remainder = hn::Or(hn::ShiftLeft<8>(rest), low);
  const auto missing = hn::SaturatedSub(quotient, remainder);
  return hn::Sub(quotient, hn::Min(missing, hn::Set(words, 1)));
}

/// The target moves towards the source by a part of their distance. No sum lies halfway between two
/// results, as 65025 is odd, so that both directions round alike.
HWY_INLINE ByteVector MixByProduct(ByteVector s, ByteVector t, WordVector evenWeight,
                                   WordVector oddWeight) {
  const auto up = hn::SaturatedSub(s, t), down = hn::SaturatedSub(t, s);
  const auto d = hn::BitCast(Words(), hn::Or(up, down));
  const auto evenD = hn::And(d, hn::Set(Words(), 0xFF)), oddD = hn::ShiftRight<8>(d);
  const auto even = ProductPart(evenD, hn::ShiftLeft<8>(evenD), evenWeight);
  const auto odd = ProductPart(oddD, hn::And(d, hn::Set(Words(), 0xFF00)), oddWeight);
  const auto part = hn::BitCast(Bytes(), hn::Or(even, hn::ShiftLeft<8>(odd)));
  const auto rises = hn::Eq(down, hn::Zero(Bytes()));
  return hn::IfThenElse(rises, hn::Add(t, part), hn::Sub(t, part));
}

template <bool kByProduct>
HWY_INLINE ByteVector Mixed(ByteVector s, ByteVector t, WordVector even, WordVector odd) {
  if constexpr (kByProduct) return MixByProduct(s, t, even, odd);
  return Mix(s, t, even, odd);
}

/// A vector of pixels. Their opacity is one byte, the pixel's own or the constant, or else the
/// product of both.
template <size_t kTargetBytes, bool kByProduct>
HWY_INLINE void BlendBlock(const uint8_t* source, Opacity opacity, uint8_t* target) {
  const Bytes d;
  ByteVector sb, sg, sr, sa, tb, tg, tr;
  hn::LoadInterleaved4(d, source, sb, sg, sr, sa);
  const auto weight = opacity.pixelAlpha ? sa : hn::Set(d, opacity.constant);
  if (hn::AllTrue(d, hn::Eq(weight, hn::Zero(d)))) return;
  auto even = EvenBytes(weight), odd = OddBytes(weight);
  if constexpr (kByProduct) {
    const auto constant = hn::Set(Words(), opacity.constant);
    even = hn::Mul(even, constant), odd = hn::Mul(odd, constant);
  }
  if constexpr (kTargetBytes == 3) {
    hn::LoadInterleaved3(d, target, tb, tg, tr);
    hn::StoreInterleaved3(Mixed<kByProduct>(sb, tb, even, odd),
                          Mixed<kByProduct>(sg, tg, even, odd),
                          Mixed<kByProduct>(sr, tr, even, odd), d, target);
  } else {
    ByteVector ta;
    hn::LoadInterleaved4(d, target, tb, tg, tr, ta);
    hn::StoreInterleaved4(Mixed<kByProduct>(sb, tb, even, odd),
                          Mixed<kByProduct>(sg, tg, even, odd),
                          Mixed<kByProduct>(sr, tr, even, odd),
                          Mixed<kByProduct>(hn::Set(d, 255), ta, even, odd), d, target);
  }
}

/// Whole vectors, and what is left in a vector of its own, since a pixel must not be mixed twice.
template <size_t kTargetBytes, bool kByProduct>
void BlendBlocks(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  const size_t step = hn::Lanes(Bytes());
  for (; width >= step; width -= step, source += 4 * step, target += kTargetBytes * step) {
    BlendBlock<kTargetBytes, kByProduct>(source, opacity, target);
  }
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
}  // namespace rasterkit::kernels::HWY_NAMESPACE
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
