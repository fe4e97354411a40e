#include <cmath>

#include <rasterkit/kernels/mix/mix_rows.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/mix/mix_rows.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/rows/slope-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Each way to combine twice: for one byte, and for a vector.
struct Taken {
  uint8_t operator()(uint8_t /*ground*/, uint8_t source) const { return source; }
#if HWY_TARGET != HWY_SCALAR
  HWY_INLINE ByteVector OfVectors(ByteVector /*ground*/, ByteVector source) const {
    return source;
  }
#endif
};

struct Shaded {
  uint8_t operator()(uint8_t shade, uint8_t source) const {
    return static_cast<uint8_t>((source * shade + 127) / 255);
  }
#if HWY_TARGET != HWY_SCALAR
  /// n / 255, rounded, is (m + m / 256) / 256 with m = n + 128, for all products of two bytes.
  HWY_INLINE hn::Vec<UnsignedWords> Quotient(WordVector shade, WordVector source) const {
    const UnsignedWords d;
    const auto product = hn::Mul(hn::BitCast(d, shade), hn::BitCast(d, source));
    const auto m = hn::Add(product, hn::Set(d, 128));
    return hn::Add(m, hn::ShiftRight<8>(m));
  }
  HWY_INLINE ByteVector OfVectors(ByteVector shade, ByteVector source) const {
    const UnsignedWords d;
    const auto even = Quotient(EvenBytes(shade), EvenBytes(source));
    const auto odd = Quotient(OddBytes(shade), OddBytes(source));
    const auto upper = hn::And(odd, hn::Set(d, 0xFF00));
    return hn::BitCast(Bytes(), hn::Or(hn::ShiftRight<8>(even), upper));
  }
#endif
};

template <bool kHalvesToEven>
struct Mixed {
  explicit Mixed(const MixWeights& mixWeights)
      : weights(mixWeights)
#if HWY_TARGET != HWY_SCALAR
        ,
        added(mixWeights.added),
        keptFactor(hn::Set(UnsignedWords(), mixWeights.keptFactor))
#endif
  {
  }
  uint8_t operator()(uint8_t ground, uint8_t source) const {
    return static_cast<uint8_t>(weights.kept[ground] + weights.added.table[source]);
  }
  const MixWeights& weights;
#if HWY_TARGET != HWY_SCALAR
  HWY_INLINE WordVector Sum(WordVector ground, WordVector source) const {
    const auto twice = hn::BitCast(UnsignedWords(), hn::ShiftLeft<1>(ground));
    const auto kept = hn::BitCast(Words(), hn::MulHigh(twice, keptFactor));
    return hn::Add(kept, added.Map<kHalvesToEven>(source));
  }
  HWY_INLINE ByteVector OfVectors(ByteVector ground, ByteVector source) const {
    const auto even = Sum(EvenBytes(ground), EvenBytes(source));
    const auto odd = Sum(OddBytes(ground), OddBytes(source));
    return JoinBytes(hn::And(even, hn::Set(Words(), 0xFF)), odd);
  }
  Slope added;
  hn::Vec<UnsignedWords> keptFactor;
#endif
};

template <class Way>
void CombineOneByOne(const Way& way, uint8_t* target, const uint8_t* ground, const uint8_t* source,
                     const uint8_t* keep, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const uint8_t combined = way(ground[i], source[i]);
    target[i] = static_cast<uint8_t>((target[i] & keep[i]) | (combined & ~keep[i]));
  }
}

template <class Way>
void Combine(const Way& way, uint8_t* target, const uint8_t* ground, const uint8_t* source,
             const uint8_t* keep, size_t count) {
  size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
  const Bytes d;
  const size_t lanes = hn::Lanes(d);
  for (; i + lanes <= count; i += lanes) {
    const auto combined = way.OfVectors(hn::LoadU(d, ground + i), hn::LoadU(d, source + i));
    const auto kept = hn::LoadU(d, keep + i);
    const auto old = hn::And(hn::LoadU(d, target + i), kept);
    hn::StoreU(hn::Or(old, hn::AndNot(kept, combined)), d, target + i);
  }
#endif
  CombineOneByOne(way, target + i, ground + i, source + i, keep + i, count - i);
}

void Take(uint8_t* target, const uint8_t* source, const uint8_t* keep, size_t count) {
  Combine(Taken(), target, target, source, keep, count);
}

void Shade(uint8_t* target, const uint8_t* shade, const uint8_t* source, const uint8_t* keep,
           size_t count) {
  Combine(Shaded(), target, shade, source, keep, count);
}

void Mix(const MixWeights& weights, uint8_t* target, const uint8_t* ground, const uint8_t* source,
         const uint8_t* keep, size_t count) {
  if (!weights.hasForm) {
    return CombineOneByOne(Mixed<false>(weights), target, ground, source, keep, count);
  }
  if (weights.added.low == weights.added.high) {
    return Combine(Mixed<false>(weights), target, ground, source, keep, count);
  }
  Combine(Mixed<true>(weights), target, ground, source, keep, count);
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

bool FactorGives(const ByteTable& table, int factor) {
  for (int i = 0; i < 256; ++i) {
    if ((2 * i * factor) >> 16 != table[static_cast<size_t>(i)]) return false;
  }
  return true;
}

HWY_EXPORT(Take);
HWY_EXPORT(Shade);
HWY_EXPORT(Mix);

}  // namespace

MixWeights MakeMixWeights(const ByteTable& kept, double keptShare, const ByteTable& added,
                          double addedShare) {
  MixWeights weights{kept, MakeByteMap(added, addedShare, 0)};
  if (!(keptShare >= 0 && keptShare <= 1)) return weights;
  const auto bits = static_cast<int>(std::floor(keptShare * 32768));
  const int factor = FactorGives(kept, bits) ? bits : bits + 1;
  weights.keptFactor = static_cast<uint16_t>(factor);
  weights.hasForm = weights.added.hasSlope && FactorGives(kept, factor);
  return weights;
}

void TakeRow(uint8_t* target, const uint8_t* source, const uint8_t* keep, size_t count) {
  HWY_DYNAMIC_DISPATCH(Take)(target, source, keep, count);
}

void ShadeRow(uint8_t* target, const uint8_t* shade, const uint8_t* source, const uint8_t* keep,
              size_t count) {
  HWY_DYNAMIC_DISPATCH(Shade)(target, shade, source, keep, count);
}

void MixRow(const MixWeights& weights, uint8_t* target, const uint8_t* ground,
            const uint8_t* source, const uint8_t* keep, size_t count) {
  HWY_DYNAMIC_DISPATCH(Mix)(weights, target, ground, source, keep, count);
}

}  // namespace rasterkit::kernels
#endif
