#include <cstring>

#include <rasterkit/kernels/gray/gray.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/gray/gray.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/rows/pixel_lanes-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {

/// `kBytes` is the distance from pixel to pixel: 3 for B G R, 4 for B G R A.
template <int kBytes>
void GrayOfPixels(const uint8_t* pixels, size_t count, uint8_t* gray) {
  for (size_t i = 0; i < count; ++i, pixels += kBytes) {
    gray[i] = GrayOf(pixels[2], pixels[1], pixels[0]);
  }
}

#if HWY_TARGET == HWY_SCALAR

template <int kBytes>
void GrayOfRow(const uint8_t* pixels, size_t width, uint8_t* gray) {
  GrayOfPixels<kBytes>(pixels, width, gray);
}

void GrayInPlace24(uint8_t* bgr, size_t width) {
  for (size_t x = 0; x < width; ++x, bgr += 3) std::memset(bgr, GrayOf(bgr[2], bgr[1], bgr[0]), 3);
}

#else

// A pixel takes a lane of 32 bits, as bytes G G R B. They read as two words, g + 256 g and
// r + 256 b, and moved up by a byte as two others, 256 g and g + 256 r. The sum of the four, each
// times its weight, is the gray value in units of 2^-24: its top byte is the result.
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
  LaneOrder spread;
  ByteVector ggrb;
  WordVector weights, weightsOfMoved, wordBias;
  SignedLaneVector start;
};

HWY_INLINE WordVector WordPairs(int16_t low, int16_t high) {
  return hn::OddEven(hn::Set(Words(), high), hn::Set(Words(), low));
}

template <int kBytes>
HWY_INLINE Constants MakeConstants() {
  constexpr uint8_t kGgrb[2][16] = {{1, 1, 2, 0, 4, 4, 5, 3, 7, 7, 8, 6, 10, 10, 11, 9},
                                    {1, 1, 2, 0, 5, 5, 6, 4, 9, 9, 10, 8, 13, 13, 14, 12}};
  return {SpreadOrder(),
          hn::LoadDup128(Bytes(), kGgrb[kBytes - 3]),
          WordPairs(kWeights[0], kWeights[1]),
          WordPairs(kWeights[2], kWeights[3]),
          hn::Set(Words(), INT16_MIN),
          hn::Set(SignedLanes(), static_cast<int32_t>(kBias + kLift))};
}

/// `start` plus, for each lane, the products of its two words with their weights.
HWY_INLINE SignedLaneVector AddProducts(const Constants& c, SignedLaneVector start,
                                        LaneVector words, WordVector weights) {
  const auto numbers = hn::Xor(hn::BitCast(Words(), words), c.wordBias);
  return hn::Add(start, SumOfProducts(numbers, weights));
}

HWY_INLINE LaneVector GraySum(const Constants& c, LaneVector ggrb) {
  const auto half = AddProducts(c, c.start, ggrb, c.weights);
  return hn::BitCast(Lanes(), AddProducts(c, half, hn::ShiftLeft<8>(ggrb), c.weightsOfMoved));
}

template <int kBytes>
HWY_INLINE LaneVector LoadPixels(const Constants& c, const uint8_t* pixels) {
  return hn::BitCast(Lanes(), hn::TableLookupBytes(LoadSpread<kBytes>(c.spread, pixels), c.ggrb));
}

template <int kBytes>
HWY_INLINE Quad LoadQuad(const Constants& c, const uint8_t* pixels) {
  const size_t step = hn::Lanes(Lanes()) * kBytes;
  return {LoadPixels<kBytes>(c, pixels), LoadPixels<kBytes>(c, pixels + step),
          LoadPixels<kBytes>(c, pixels + 2 * step), LoadPixels<kBytes>(c, pixels + 3 * step)};
}

/// How the top bytes of a quad become one vector in the order of the pixels.
struct TopOrder {
  ByteVector byVector;
  LaneOrder byPixel;
};

HWY_INLINE TopOrder MakeTopOrder() {
  constexpr uint8_t kByVector[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
  const int blocks = static_cast<int>(hn::Lanes(Lanes())) / 4;
  return {hn::LoadDup128(Bytes(), kByVector),
          OrderLanes([blocks](int i) { return i % blocks * 4 + i / blocks; })};
}

HWY_INLINE ByteVector TopBytes(const TopOrder& order, const Quad& q) {
  const hn::RebindToUnsigned<Words> d;
  const auto upperWords = [d](LaneVector low, LaneVector high) {
    return hn::OddEven(hn::BitCast(d, high), hn::BitCast(d, hn::ShiftRight<16>(low)));
  };
  const auto even = hn::BitCast(Bytes(), hn::ShiftRight<8>(upperWords(q.v0, q.v2)));
  const auto odd = hn::BitCast(Bytes(), upperWords(q.v1, q.v3));
  const auto bytes = hn::TableLookupBytes(hn::OddEven(odd, even), order.byVector);
  if constexpr (hn::MaxLanes(Bytes()) == 16) return bytes;
  return hn::BitCast(Bytes(), hn::TableLookupLanes(hn::BitCast(Lanes(), bytes), order.byPixel));
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

/// Zero in the lanes of neutral colors.
HWY_INLINE LaneVector Tint(LaneVector ggrb) {
  return hn::ShiftRight<16>(hn::Xor(ggrb, hn::ShiftLeft<8>(ggrb)));
}

/// Of the neutral colors, whose sums are all whole, only the levels 89 and 178 fall short: they
/// need no table.
HWY_INLINE LaneVector LowerNeutral(LaneVector ggrb, LaneVector sum) {
  const Lanes d;
  const auto fallsShort = hn::Or(hn::Eq(ggrb, hn::Set(d, 89 * 0x01010101u)),
                                 hn::Eq(ggrb, hn::Set(d, 178 * 0x01010101u)));
  return hn::Sub(sum, hn::IfThenElseZero(fallsShort, hn::Set(d, static_cast<uint32_t>(kOne))));
}

/// Asks the table about the lanes whose exact sum is whole.
HWY_INLINE LaneVector LowerByTable(LaneVector ggrb, LaneVector sum) {
  const Lanes d;
  const auto red = hn::And(hn::ShiftRight<13>(ggrb), hn::Set(d, 255 * 8));
  const auto greenWord = hn::And(hn::ShiftRight<5>(ggrb), hn::Set(d, 7));
  const auto index = hn::BitCast(SignedLanes(), hn::Or(red, greenWord));
  const auto words = hn::GatherIndex(d, kGrayIsOneLess.data(), index);
  const auto fromGreen = hn::Shr(words, hn::And(ggrb, hn::Set(d, 31)));
  const auto one = hn::ShiftLeft<24>(hn::And(fromGreen, hn::Set(d, 1)));
  return hn::Sub(sum, hn::IfThenElseZero(LessThanAThousandth(Fraction(sum)), one));
}

HWY_INLINE bool AllAreEqual(const Quad& q) {
  const auto first = hn::Set(Lanes(), hn::GetLane(q.v0));
  return AllAreZero(ForEach([first](LaneVector v) { return hn::Xor(v, first); }, q));
}

/// Sums of which some are whole, made such that the top bytes are right. Neutral colors are common
/// (paper, scans) and need no table; runs of one other color need one look into it.
HWY_INLINE Quad SettledSums(const Quad& ggrb, const Quad& sums) {
  const bool neutral = AllAreZero(ForEach([](LaneVector v) { return Tint(v); }, ggrb));
  if (neutral) {
    return ForEach([](LaneVector v, LaneVector sum) { return LowerNeutral(v, sum); }, ggrb, sums);
  }
  if (AllAreEqual(ggrb)) {
    const auto sum = LowerByTable(ggrb.v0, sums.v0);
    return {sum, sum, sum, sum};
  }
  return ForEach([](LaneVector v, LaneVector sum) { return LowerByTable(v, sum); }, ggrb, sums);
}

/// Lanes with the gray value of each pixel in their top byte. Three-byte pixels are read a quarter
/// of a vector too far.
template <int kBytes>
HWY_INLINE Quad GrayOfQuad(const Constants& c, const uint8_t* pixels) {
  const Quad ggrb = LoadQuad<kBytes>(c, pixels);
  const Quad sums = ForEach([&c](LaneVector v) { return GraySum(c, v); }, ggrb);
  if (HWY_LIKELY(NoneIsWhole(sums))) return sums;
  return SettledSums(ggrb, sums);
}

template <int kBytes>
void GrayOfRow(const uint8_t* pixels, size_t width, uint8_t* gray) {
  const size_t lanes = hn::Lanes(Bytes());
  const size_t readAhead = PixelsReadAhead<kBytes>(lanes);
  const size_t touched = lanes + readAhead;
  if (width < touched) return GrayOfPixels<kBytes>(pixels, width, gray);
  const Constants constants = MakeConstants<kBytes>();
  const TopOrder order = MakeTopOrder();
  for (size_t x = 0; x + touched <= width; x += lanes) {
    const Quad sums = GrayOfQuad<kBytes>(constants, pixels + x * kBytes);
    hn::StoreU(TopBytes(order, sums), Bytes(), gray + x);
  }
  // The last vector reads to the end of the row and does some pixels again; what it only reads is
  // left to the end.
  const size_t last = width - touched;
  const Quad sums = GrayOfQuad<kBytes>(constants, pixels + last * kBytes);
  hn::StoreU(TopBytes(order, sums), Bytes(), gray + last);
  const size_t rest = last + lanes;
  GrayOfPixels<kBytes>(pixels + rest * kBytes, readAhead, gray + rest);
}

/// Replaces the pixels of a quad by their gray values.
struct ReplaceByGray {
  Constants constants;
  PackedOrder threeTimes;

  HWY_INLINE void operator()(uint8_t* pixels) const {
    StorePacked(threeTimes, GrayOfQuad<3>(constants, pixels), pixels);
  }
};

void GrayInPlace24(uint8_t* bgr, size_t width) {
  constexpr uint8_t kTop[16] = {3, 3, 3, 7, 7, 7, 11, 11, 11, 15, 15, 15, 0, 0, 0, 0};
  EditRow<3>(ReplaceByGray{MakeConstants<3>(), MakePackedOrder(kTop)}, bgr, width);
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
HWY_EXPORT(GrayInPlace24);

void GrayOfRow24(const uint8_t* bgr, size_t width, uint8_t* gray) {
  HWY_DYNAMIC_DISPATCH(GrayOfRow24)(bgr, width, gray);
}

void GrayOfRow32(const uint8_t* bgra, size_t width, uint8_t* gray) {
  HWY_DYNAMIC_DISPATCH(GrayOfRow32)(bgra, width, gray);
}

void GrayInPlace24(uint8_t* bgr, size_t width) {
  HWY_DYNAMIC_DISPATCH(GrayInPlace24)(bgr, width);
}

}  // namespace rasterkit::kernels
#endif
