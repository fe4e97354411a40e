#include <bit>
#include <cstring>

#include <rasterkit/host/kernels/gray.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/host/kernels/gray.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// `kBytes` is the distance from pixel to pixel: 3 for B G R, 4 for B G R A.
template <int kBytes>
void GrayOfPixels(const uint8_t* pixels, size_t count, uint8_t* gray) {
  for (size_t i = 0; i < count; ++i, pixels += kBytes)
    gray[i] = GrayOf(pixels[2], pixels[1], pixels[0]);
}

#if HWY_TARGET == HWY_SCALAR

template <int kBytes>
void GrayOfRow(const uint8_t* pixels, size_t width, uint8_t* gray) {
  GrayOfPixels<kBytes>(pixels, width, gray);
}

#else

using Bytes = hn::ScalableTag<uint8_t>;
using Words = hn::Repartition<int16_t, Bytes>;
using Lanes = hn::Repartition<uint32_t, Bytes>;
using SignedLanes = hn::RebindToSigned<Lanes>;
using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;
using LaneVector = hn::Vec<Lanes>;
using SignedLaneVector = hn::Vec<SignedLanes>;
using LaneMask = hn::Mask<Lanes>;
using LaneOrder = decltype(hn::SetTableIndices(Lanes(), static_cast<const int32_t*>(nullptr)));

// A pixel takes a lane of 32 bits, as bytes G G R B. They read as two words, g + 256 g and
// r + 256 b, and moved up by a byte as two others, 256 g and g + 256 r. The sum of the four, each
// times its weight, is the grey value in units of 2^-24: its top byte is the result.
constexpr int16_t kWeights[4] = {5833, 7471, 32669, 19435};
constexpr int64_t kRed = kWeights[1] + 256 * kWeights[3];
constexpr int64_t kGreen = 257 * kWeights[0] + 256 * kWeights[2] + kWeights[3];
constexpr int64_t kBlue = 256 * kWeights[1];

// What this makes of red, green and blue is never above the exact weights. Lifted by the most that
// it falls short of them, every sum is the exact one or exceeds it by less than a thousandth. So
// the top byte is right, and less than a thousandth follows it just where the exact sum is whole.
constexpr int64_t kOne = 1 << 24;
constexpr int64_t kLift = 255 * (kOne - kRed - kGreen - kBlue);
constexpr int32_t kThousandth = kOne / 1000;
static_assert(kRed * 1000 <= 297 * kOne && kGreen * 1000 <= 589 * kOne &&
              kBlue * 1000 <= 114 * kOne && kLift < kThousandth);

/// Words are multiplied as signed numbers, so 2^15 is taken from each before; this gives it back.
constexpr int64_t kBias = 32768 * (kWeights[0] + kWeights[1] + kWeights[2] + kWeights[3]);

/// What stays the same from vector to vector.
struct Constants {
  LaneOrder groups;
  ByteVector ggrb;
  WordVector weights, weightsOfMoved, wordBias;
  SignedLaneVector start;
  ByteVector byVector;
  LaneOrder byPixel;
};

HWY_INLINE WordVector WordPairs(int16_t low, int16_t high) {
  return hn::OddEven(hn::Set(Words(), high), hn::Set(Words(), low));
}

template <int kBytes>
HWY_INLINE Constants MakeConstants() {
  constexpr uint8_t kGgrb[2][16] = {{1, 1, 2, 0, 4, 4, 5, 3, 7, 7, 8, 6, 10, 10, 11, 9},
                                    {1, 1, 2, 0, 5, 5, 6, 4, 9, 9, 10, 8, 13, 13, 14, 12}};
  constexpr uint8_t kByVector[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
  constexpr int kMaxLanes = static_cast<int>(hn::MaxLanes(Lanes()));
  const int lanes = static_cast<int>(hn::Lanes(Lanes()));
  const int blocks = lanes / 4;
  int32_t groups[kMaxLanes], byPixel[kMaxLanes];
  for (int i = 0; i < lanes; ++i) {
    groups[i] = i / 4 * 3 + i % 4;
    byPixel[i] = i % blocks * 4 + i / blocks;
  }
  return {hn::SetTableIndices(Lanes(), groups),
          hn::LoadDup128(Bytes(), kGgrb[kBytes - 3]),
          WordPairs(kWeights[0], kWeights[1]),
          WordPairs(kWeights[2], kWeights[3]),
          hn::Set(Words(), INT16_MIN),
          hn::Set(SignedLanes(), static_cast<int32_t>(kBias + kLift)),
          hn::LoadDup128(Bytes(), kByVector),
          hn::SetTableIndices(Lanes(), byPixel)};
}

/// Loads a pixel into each lane. Three-byte pixels are first moved so that four of them start each
/// block of 16 bytes, and a quarter of a vector behind them is read too.
template <int kBytes>
HWY_INLINE LaneVector LoadPixels(const Constants& c, const uint8_t* pixels) {
  auto loaded = hn::BitCast(Lanes(), hn::LoadU(Bytes(), pixels));
  if constexpr (kBytes == 3 && hn::MaxLanes(Bytes()) > 16)
    loaded = hn::TableLookupLanes(loaded, c.groups);
  return hn::BitCast(Lanes(), hn::TableLookupBytes(hn::BitCast(Bytes(), loaded), c.ggrb));
}

/// `start` plus, for each lane, the products of its two words with their weights.
HWY_INLINE SignedLaneVector AddProducts(const Constants& c, SignedLaneVector start,
                                        LaneVector words, WordVector weights) {
  const auto numbers = hn::Xor(hn::BitCast(Words(), words), c.wordBias);
  auto odd = hn::Zero(SignedLanes());
  const auto even = hn::ReorderWidenMulAccumulate(SignedLanes(), numbers, weights, start, odd);
  return hn::RearrangeToOddPlusEven(even, odd);
}

HWY_INLINE LaneVector GraySum(const Constants& c, LaneVector ggrb) {
  const auto half = AddProducts(c, c.start, ggrb, c.weights);
  return hn::BitCast(Lanes(), AddProducts(c, half, hn::ShiftLeft<8>(ggrb), c.weightsOfMoved));
}

/// Four vectors of lanes: as many pixels as a vector has bytes.
struct Quad {
  LaneVector v0, v1, v2, v3;
};

/// `function` of each vector.
template <class Function>
HWY_INLINE Quad ForEach(Function function, const Quad& q) {
  return {function(q.v0), function(q.v1), function(q.v2), function(q.v3)};
}

template <int kBytes>
HWY_INLINE Quad LoadQuad(const Constants& c, const uint8_t* pixels) {
  const size_t step = hn::Lanes(Lanes()) * kBytes;
  return {LoadPixels<kBytes>(c, pixels), LoadPixels<kBytes>(c, pixels + step),
          LoadPixels<kBytes>(c, pixels + 2 * step), LoadPixels<kBytes>(c, pixels + 3 * step)};
}

/// The top byte of each lane, in the order of the pixels.
HWY_INLINE ByteVector TopBytes(const Constants& c, const Quad& q) {
  const hn::RebindToUnsigned<Words> d;
  const auto upperWords = [d](LaneVector low, LaneVector high) {
    return hn::OddEven(hn::BitCast(d, high), hn::BitCast(d, hn::ShiftRight<16>(low)));
  };
  const auto even = hn::BitCast(Bytes(), hn::ShiftRight<8>(upperWords(q.v0, q.v2)));
  const auto odd = hn::BitCast(Bytes(), upperWords(q.v1, q.v3));
  const auto bytes = hn::TableLookupBytes(hn::OddEven(odd, even), c.byVector);
  if constexpr (hn::MaxLanes(Bytes()) == 16) return bytes;
  return hn::BitCast(Bytes(), hn::TableLookupLanes(hn::BitCast(Lanes(), bytes), c.byPixel));
}

/// What a sum has below its top byte.
HWY_INLINE SignedLaneVector Fraction(LaneVector sum) {
  return hn::BitCast(SignedLanes(), hn::And(sum, hn::Set(Lanes(), 0xFFFFFF)));
}

HWY_INLINE LaneMask LessThanAThousandth(SignedLaneVector fraction) {
  const auto thousandth = hn::Set(SignedLanes(), kThousandth);
  return hn::RebindMask(Lanes(), hn::Lt(fraction, thousandth));
}

HWY_INLINE bool NoneIsWhole(const Quad& sums) {
  const auto least = hn::Min(hn::Min(Fraction(sums.v0), Fraction(sums.v1)),
                             hn::Min(Fraction(sums.v2), Fraction(sums.v3)));
  return hn::AllFalse(Lanes(), LessThanAThousandth(least));
}

HWY_INLINE bool AllAreZero(const Quad& q) {
  const auto any = hn::Or(hn::Or(q.v0, q.v1), hn::Or(q.v2, q.v3));
  return hn::AllTrue(Lanes(), hn::Eq(any, hn::Zero(Lanes())));
}

/// Zero in the lanes of neutral colours.
HWY_INLINE LaneVector Tint(LaneVector ggrb) {
  return hn::ShiftRight<16>(hn::Xor(ggrb, hn::ShiftLeft<8>(ggrb)));
}

/// Of the neutral colours, whose sums are all whole, only the levels 89 and 178 fall short: they
/// need no table.
HWY_INLINE LaneVector LowerNeutral(LaneVector ggrb, LaneVector sum) {
  const Lanes d;
  const auto fallsShort = hn::Or(hn::Eq(ggrb, hn::Set(d, 89 * 0x01010101u)),
                                 hn::Eq(ggrb, hn::Set(d, 178 * 0x01010101u)));
  return hn::Sub(sum, hn::IfThenElseZero(fallsShort, hn::Set(d, static_cast<uint32_t>(kOne))));
}

/// Does the pixels of other colours whose exact sum is whole once more, one by one.
template <int kBytes>
HWY_INLINE void RedoTinted(LaneVector ggrb, LaneVector sum, const uint8_t* pixels,
                           uint8_t* target) {
  const auto tinted = hn::Ne(Tint(ggrb), hn::Zero(Lanes()));
  const auto doubt = hn::And(tinted, LessThanAThousandth(Fraction(sum)));
  uint8_t bytes[HWY_MAX((hn::MaxLanes(Lanes()) + 7) / 8, 8)] = {};
  hn::StoreMaskBits(Lanes(), doubt, bytes);
  for (size_t first = 0; first < hn::Lanes(Lanes()); first += 64) {
    uint64_t bits;
    std::memcpy(&bits, bytes + first / 8, sizeof bits);
    for (; bits != 0; bits &= bits - 1) {
      const size_t i = first + static_cast<size_t>(std::countr_zero(bits));
      GrayOfPixels<kBytes>(pixels + i * kBytes, 1, target + i);
    }
  }
}

HWY_INLINE bool AllAreNeutral(const Quad& ggrb) {
  return AllAreZero(ForEach([](LaneVector v) { return Tint(v); }, ggrb));
}

HWY_INLINE bool AllAreEqual(const Quad& q) {
  const auto first = hn::Set(Lanes(), hn::GetLane(q.v0));
  return AllAreZero(ForEach([first](LaneVector v) { return hn::Xor(v, first); }, q));
}

/// Stores a vector in which some exact sums are whole. Neutral colours are common (paper, scans),
/// and so are runs of one other colour, which is looked up once; what remains is rare.
template <int kBytes>
HWY_INLINE void StoreSettled(const Constants& c, const Quad& ggrb, const Quad& sums,
                             const uint8_t* pixels, uint8_t* target) {
  const bool neutral = AllAreNeutral(ggrb);
  if (!neutral && AllAreEqual(ggrb)) {
    const uint8_t gray = GrayOf(pixels[2], pixels[1], pixels[0]);
    return hn::StoreU(hn::Set(Bytes(), gray), Bytes(), target);
  }
  const Quad lowered{LowerNeutral(ggrb.v0, sums.v0), LowerNeutral(ggrb.v1, sums.v1),
                     LowerNeutral(ggrb.v2, sums.v2), LowerNeutral(ggrb.v3, sums.v3)};
  hn::StoreU(TopBytes(c, lowered), Bytes(), target);
  if (neutral) return;
  const size_t lanes = hn::Lanes(Lanes());
  RedoTinted<kBytes>(ggrb.v0, sums.v0, pixels, target);
  RedoTinted<kBytes>(ggrb.v1, sums.v1, pixels + lanes * kBytes, target + lanes);
  RedoTinted<kBytes>(ggrb.v2, sums.v2, pixels + 2 * lanes * kBytes, target + 2 * lanes);
  RedoTinted<kBytes>(ggrb.v3, sums.v3, pixels + 3 * lanes * kBytes, target + 3 * lanes);
}

/// Three-byte pixels are read a quarter of a vector too far.
template <int kBytes>
HWY_INLINE void GrayOfVector(const Constants& c, const uint8_t* pixels, uint8_t* target) {
  const Quad ggrb = LoadQuad<kBytes>(c, pixels);
  const Quad sums = ForEach([&c](LaneVector v) { return GraySum(c, v); }, ggrb);
  if (HWY_LIKELY(NoneIsWhole(sums))) return hn::StoreU(TopBytes(c, sums), Bytes(), target);
  StoreSettled<kBytes>(c, ggrb, sums, pixels, target);
}

template <int kBytes>
void GrayOfRow(const uint8_t* pixels, size_t width, uint8_t* gray) {
  const size_t lanes = hn::Lanes(Bytes());
  const size_t readAhead = kBytes == 3 ? lanes / 12 + 1 : 0;
  const size_t touched = lanes + readAhead;
  if (width < touched) return GrayOfPixels<kBytes>(pixels, width, gray);
  const Constants constants = MakeConstants<kBytes>();
  for (size_t x = 0; x + touched <= width; x += lanes)
    GrayOfVector<kBytes>(constants, pixels + x * kBytes, gray + x);
  // The last vector reads to the end of the row and does some pixels again; what it only reads is
  // left to the end.
  const size_t last = width - touched;
  GrayOfVector<kBytes>(constants, pixels + last * kBytes, gray + last);
  const size_t rest = last + lanes;
  GrayOfPixels<kBytes>(pixels + rest * kBytes, readAhead, gray + rest);
}

#endif

void GrayOfRow24(const uint8_t* bgr, size_t width, uint8_t* gray) {
  GrayOfRow<3>(bgr, width, gray);
}
void GrayOfRow32(const uint8_t* bgra, size_t width, uint8_t* gray) {
  GrayOfRow<4>(bgra, width, gray);
}

}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {

HWY_EXPORT(GrayOfRow24);
HWY_EXPORT(GrayOfRow32);

void GrayOfRow24(const uint8_t* bgr, size_t width, uint8_t* gray) {
  HWY_DYNAMIC_DISPATCH(GrayOfRow24)(bgr, width, gray);
}

void GrayOfRow32(const uint8_t* bgra, size_t width, uint8_t* gray) {
  HWY_DYNAMIC_DISPATCH(GrayOfRow32)(bgra, width, gray);
}

void GrayInPlace24(uint8_t* bgr, size_t width) {
  for (size_t x = 0; x < width; ++x, bgr += 3) std::memset(bgr, GrayOf(bgr[2], bgr[1], bgr[0]), 3);
}

}  // namespace rasterkit::kernels
#endif
