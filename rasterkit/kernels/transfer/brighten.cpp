#include <algorithm>
#include <cmath>
#include <cstring>

#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/kernels/transfer/brighten.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/transfer/brighten.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/rows/expand_grays-inl.h>
#include <rasterkit/kernels/rows/slope-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

uint8_t Brightened(uint8_t channel, double factor, double gain) {
  // Product and sum have at most 33 significant bits: exact in double, rounded once to single.
  const auto sum = static_cast<float>(channel * factor + gain);
  if (!(sum > 0)) return 0;
  return sum > 255 ? 255 : static_cast<uint8_t>(std::lrint(sum));
}

void BrightenOneByOne(const Brightening& b, const uint8_t* bgr, size_t width, uint8_t* target) {
  for (size_t i = 0; i < 3 * width; i += 3) {
    const uint8_t gray = GrayOf(bgr[i + 2], bgr[i + 1], bgr[i]);
    const double gain = std::trunc((255 - gray) * static_cast<double>(b.weight));
    for (size_t c = i; c < i + 3; ++c) target[c] = Brightened(bgr[c], b.factor, gain);
  }
}

#if HWY_TARGET == HWY_SCALAR

void BrightenRow(const Brightening& b, const uint8_t* bgr, size_t width, uint8_t* target) {
  BrightenOneByOne(b, bgr, width, target);
}

#else

/// What stays the same from vector to vector.
struct Constants {
  explicit Constants(const Brightening& b)
      : low(hn::Set(Words(), b.low)),
        high(hn::Set(Words(), b.high)),
        error(hn::Set(UnsignedWords(), b.error)),
        direction(hn::Set(Bytes(), b.errorIsUp ? 1 : 0)),
        gain(hn::Set(UnsignedWords(), b.gain)),
        most(hn::Set(Words(), 255)) {}

  ExpandGrays expand;
  WordVector low, high;
  hn::Vec<UnsignedWords> error;
  ByteVector direction;
  hn::Vec<UnsignedWords> gain;
  WordVector most;
};

HWY_INLINE ByteVector RoundedProducts(WordVector even, WordVector odd, WordVector factor) {
  return JoinBytes(hn::MulFixedPoint15(even, factor), hn::MulFixedPoint15(odd, factor));
}

/// 1 where the greatest power of two in the sum does not exceed the error: there the single lies on
/// the error's side of the half.
HWY_INLINE ByteVector UpWhereErrorCounts(const Constants& c, WordVector even, WordVector odd,
                                         ByteVector sum) {
  const UnsignedWords du;
  const auto error = JoinBytes(hn::BitCast(Words(), hn::MulHigh(hn::BitCast(du, even), c.error)),
                               hn::BitCast(Words(), hn::MulHigh(hn::BitCast(du, odd), c.error)));
  const auto counts = hn::Eq(hn::Max(hn::Xor(sum, error), error), error);
  return hn::IfThenElse(counts, c.direction, sum);
}

/// Sums are cut at 255, which is what they become anyway.
template <bool kErrorCounts>
HWY_INLINE ByteVector BrightenBytes(const Constants& c, ByteVector channels, ByteVector gains) {
  const auto even = EvenBytes(channels), odd = OddBytes(channels);
  const auto less = RoundedProducts(even, odd, c.low);
  const auto isHalf = hn::Sub(RoundedProducts(even, odd, c.high), less);  // 0 or 1
  const auto sum = hn::SaturatedAdd(hn::SaturatedAdd(channels, less), gains);
  if constexpr (kErrorCounts) {
    return hn::SaturatedAdd(sum, hn::And(isHalf, UpWhereErrorCounts(c, even, odd, sum)));
  }
  return hn::SaturatedAdd(sum, hn::And(isHalf, sum));
}

HWY_INLINE WordVector GainWords(const Constants& c, WordVector grays) {
  const UnsignedWords du;
  const auto twice = hn::BitCast(du, hn::ShiftLeft<1>(hn::Sub(c.most, grays)));
  return hn::BitCast(Words(), hn::MulHigh(twice, c.gain));
}

/// As many pixels as a vector has bytes.
template <bool kErrorCounts>
HWY_INLINE void BrightenVector(const Constants& c, const uint8_t* bgr, const uint8_t* grays,
                               uint8_t* target) {
  const Bytes d;
  const size_t lanes = hn::Lanes(d);
  const auto gray = hn::LoadU(d, grays);
  const auto gains = JoinBytes(GainWords(c, EvenBytes(gray)), GainWords(c, OddBytes(gray)));
  const auto first = hn::LoadU(d, bgr);
  const auto second = hn::LoadU(d, bgr + lanes);
  const auto third = hn::LoadU(d, bgr + 2 * lanes);
  hn::StoreU(BrightenBytes<kErrorCounts>(c, first, c.expand.Part<0>(gains)), d, target);
  hn::StoreU(BrightenBytes<kErrorCounts>(c, second, c.expand.Part<1>(gains)), d, target + lanes);
  hn::StoreU(BrightenBytes<kErrorCounts>(c, third, c.expand.Part<2>(gains)), d, target + 2 * lanes);
}

/// An error of half a half of the last place is below what a sum shows, as a sum is no less than
/// its channel.
constexpr uint16_t kNoSumShowsIt = 32768;

constexpr size_t kPart = 1024;

template <bool kErrorCounts>
void BrightenPart(const Constants& c, const uint8_t* bgr, size_t width, uint8_t* target) {
  constexpr size_t kLanes = hn::MaxLanes(Bytes());
  uint8_t grays[kPart + kLanes];
  GrayOfRow24(bgr, width, grays);
  const size_t lanes = hn::Lanes(Bytes());
  size_t x = 0;
  for (; x + lanes <= width; x += lanes) {
    BrightenVector<kErrorCounts>(c, bgr + 3 * x, grays + x, target + 3 * x);
  }
  if (x == width) return;
  // The rest in a vector of its own, as the row ends before it.
  uint8_t pixels[3 * kLanes] = {};
  std::memcpy(pixels, bgr + 3 * x, 3 * (width - x));
  std::memset(grays + width, 0, lanes);
  BrightenVector<kErrorCounts>(c, pixels, grays + x, pixels);
  std::memcpy(target + 3 * x, pixels, 3 * (width - x));
}

template <bool kErrorCounts>
void BrightenParts(const Brightening& b, const uint8_t* bgr, size_t width, uint8_t* target) {
  const Constants constants(b);
  for (size_t x = 0; x < width; x += kPart) {
    BrightenPart<kErrorCounts>(constants, bgr + 3 * x, std::min(kPart, width - x), target + 3 * x);
  }
}

void BrightenRow(const Brightening& b, const uint8_t* bgr, size_t width, uint8_t* target) {
  if (!b.hasForm) return BrightenOneByOne(b, bgr, width, target);
  if (b.error > kNoSumShowsIt) return BrightenParts<true>(b, bgr, width, target);
  BrightenParts<false>(b, bgr, width, target);
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

/// The factor of `GainWords` that gives (255 - gray) * weight, cut, for every gray value: the
/// weight's 15 bits or their successor.
uint16_t GainFactor(float weight) {
  const auto bits = static_cast<int>(std::floor(weight * 32768.0));
  const auto fits = [weight](int factor) {
    for (int u = 0; u < 256; ++u) {
      if ((2 * u * factor) >> 16 != static_cast<int>(u * static_cast<double>(weight))) return false;
    }
    return true;
  };
  return static_cast<uint16_t>(fits(bits) ? bits : bits + 1);
}

HWY_EXPORT(BrightenRow);

}  // namespace

Brightening MakeBrightening(int32_t percent, float factor, float weight) {
  Brightening b{factor, weight};
  b.hasForm = percent >= 0 && percent <= 100;
  if (!b.hasForm) return b;
  // A whole hundred (and none) makes no halves; quarters are exact, so their halves lie between
  // them and the number below.
  const int part = percent * 32768 / 100;
  const bool isExact = percent * 32768 % 100 == 0;
  const bool isWhole = percent % 100 == 0;
  b.low = static_cast<int16_t>(isWhole ? std::min(part, 32767) : (isExact ? part - 1 : part));
  b.high = static_cast<int16_t>(isWhole ? b.low : b.low + 1);
  b.gain = GainFactor(weight);
  const double error = factor - (1.0 + percent / 100.0);
  b.error = static_cast<uint16_t>(std::fabs(error) * 0x1p40);
  b.errorIsUp = error > 0;
  return b;
}

void BrightenRow24(const Brightening& brightening, const uint8_t* bgr, size_t width,
                   uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(BrightenRow)(brightening, bgr, width, target);
}

}  // namespace rasterkit::kernels
#endif
