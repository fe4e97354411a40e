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
namespace rasterkit::kernels {
namespace HWY_NAMESPACE {
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
using Words = hn::Repartition<uint16_t, Bytes>;
using SignedWords = hn::RebindToSigned<Words>;
using ByteVector = hn::Vec<Bytes>;
using WordVector = hn::Vec<Words>;

/// The same number, hidden from the compiler, which would replace each multiplication by four
/// shifts and sums.
inline int16_t Opaque(int16_t value) {
  asm("" : "+r"(value));
  return value;
}

/// The weights are 1000 thousandths together, so a grey value is green plus the weighted distances
/// of red and blue from it: (297 (r - g) + 114 (b - g)) / 1000, which needs fewer bits than the
/// whole sum.
struct Weights {
  hn::Vec<SignedWords> red, blue;
};

HWY_INLINE Weights MakeWeights() {
  return {hn::Set(SignedWords(), Opaque(37)), hn::Set(SignedWords(), Opaque(14))};
}

/// Keeps quotients positive: 255 * 411 / 1000 is the farthest that a grey value can lie below
/// green.
constexpr uint8_t kBias = 105;

/// For half the pixels: how far grey lies above green, plus the bias; and words that are zero
/// wherever the exact sum is a whole number (and seldom elsewhere), where the result may be one too
/// high.
struct Distances {
  WordVector aboveGreen;
  WordVector doubt;
};

HWY_INLINE Distances DistancesOf(const Weights& weights, WordVector r, WordVector g, WordVector b) {
  const Words d;
  const SignedWords di;
  const auto red = hn::BitCast(di, hn::Sub(r, g));
  const auto blue = hn::BitCast(di, hn::Sub(b, g));
  // 297 red + 114 blue takes 18 bits. Divided by 8 it fits a word, and so does what the division
  // cuts off: 297 = 8 * 37 + 1, 114 = 8 * 14 + 2.
  const auto rest = hn::Add(red, hn::Add(blue, blue));
  const auto eighths = hn::Add(hn::Add(hn::Mul(red, weights.red), hn::Mul(blue, weights.blue)),
                               hn::Add(hn::ShiftRight<3>(rest), hn::Set(di, kBias * 125)));
  // 33555 / 2^22 exceeds 1 / 125 by so little that the quotient is exact up to 31875; its bits
  // above the point are all zero after every exact division.
  const auto quotient = hn::MulHigh(hn::BitCast(d, eighths), hn::Set(d, 33555));
  const auto fraction = hn::And(quotient, hn::Set(d, 63));
  const auto cutOff = hn::And(hn::BitCast(d, rest), hn::Set(d, 7));
  return {hn::ShiftRight<6>(quotient), hn::Or(fraction, cutOff)};
}

/// Every second byte as words, from the first or from the second on.
HWY_INLINE WordVector Even(ByteVector v) {
  return hn::And(hn::BitCast(Words(), v), hn::Set(Words(), 0xFF));
}
HWY_INLINE WordVector Odd(ByteVector v) {
  return hn::ShiftRight<8>(hn::BitCast(Words(), v));
}
HWY_INLINE ByteVector Interleave(WordVector even, WordVector odd) {
  return hn::BitCast(Bytes(), hn::Or(even, hn::ShiftLeft<8>(odd)));
}

struct Channels {
  ByteVector r, g, b;
};

template <int kBytes>
HWY_INLINE Channels Load(const uint8_t* pixels) {
  Channels c;
  if constexpr (kBytes == 3) {
    hn::LoadInterleaved3(Bytes(), pixels, c.b, c.g, c.r);
  } else {
    ByteVector alpha;
    hn::LoadInterleaved4(Bytes(), pixels, c.b, c.g, c.r, alpha);
  }
  return c;
}

HWY_INLINE hn::Mask<Bytes> Neutral(const Channels& c) {
  return hn::And(hn::Eq(c.r, c.g), hn::Eq(c.g, c.b));
}

HWY_INLINE bool AllAre(const Channels& c, const uint8_t* pixel) {
  const Bytes d;
  const auto same =
      hn::And(hn::Eq(c.r, hn::Set(d, pixel[2])),
              hn::And(hn::Eq(c.g, hn::Set(d, pixel[1])), hn::Eq(c.b, hn::Set(d, pixel[0]))));
  return hn::AllTrue(d, same);
}

/// Does the pixels whose lanes are set once more, one by one.
template <int kBytes>
HWY_INLINE void Redo(hn::Mask<Bytes> lanes, const uint8_t* pixels, uint8_t* target) {
  const Bytes d;
  alignas(8) uint8_t bytes[HWY_MAX((hn::MaxLanes(Bytes()) + 7) / 8, 8)] = {};
  hn::StoreMaskBits(d, lanes, bytes);
  for (size_t first = 0; first < hn::Lanes(d); first += 64) {
    uint64_t bits;
    std::memcpy(&bits, bytes + first / 8, sizeof bits);
    for (; bits != 0; bits &= bits - 1) {
      const size_t i = first + static_cast<size_t>(std::countr_zero(bits));
      GrayOfPixels<kBytes>(pixels + i * kBytes, 1, target + i);
    }
  }
}

/// Settles the lanes in doubt, and stores. Neutral colours are always in doubt and common (paper,
/// scans): only 89 and 178 of them fall short, so they need no table. Whole runs of one other
/// colour are looked up once; what remains is rare.
template <int kBytes>
HWY_INLINE void StoreSettled(const Channels& c, ByteVector gray, hn::Mask<Bytes> doubt,
                             const uint8_t* pixels, uint8_t* target) {
  const Bytes d;
  const auto neutral = Neutral(c);
  const auto levels = hn::Or(hn::Eq(gray, hn::Set(d, 89)), hn::Eq(gray, hn::Set(d, 178)));
  const auto oneLess = hn::And(neutral, levels);
  hn::StoreU(hn::IfThenElse(oneLess, hn::Sub(gray, hn::Set(d, 1)), gray), d, target);
  doubt = hn::AndNot(neutral, doubt);
  if (HWY_LIKELY(hn::AllFalse(d, doubt))) return;
  if (AllAre(c, pixels)) {
    hn::StoreU(hn::Set(d, GrayOf(pixels[2], pixels[1], pixels[0])), d, target);
  } else {
    Redo<kBytes>(doubt, pixels, target);
  }
}

template <int kBytes>
HWY_INLINE void GrayOfVector(const Weights& weights, const uint8_t* pixels, uint8_t* target) {
  const Bytes d;
  const Channels c = Load<kBytes>(pixels);
  const Distances even = DistancesOf(weights, Even(c.r), Even(c.g), Even(c.b));
  const Distances odd = DistancesOf(weights, Odd(c.r), Odd(c.g), Odd(c.b));
  const auto distance = Interleave(even.aboveGreen, odd.aboveGreen);
  const auto gray = hn::Add(distance, hn::Sub(c.g, hn::Set(d, kBias)));
  const auto doubt = hn::Eq(Interleave(even.doubt, odd.doubt), hn::Zero(d));
  if (HWY_LIKELY(hn::AllFalse(d, doubt))) return hn::StoreU(gray, d, target);
  StoreSettled<kBytes>(c, gray, doubt, pixels, target);
}

template <int kBytes>
void GrayOfRow(const uint8_t* pixels, size_t width, uint8_t* gray) {
  const size_t lanes = hn::Lanes(Bytes());
  if (width < lanes) return GrayOfPixels<kBytes>(pixels, width, gray);
  const Weights weights = MakeWeights();
  for (size_t x = 0; x + lanes <= width; x += lanes)
    GrayOfVector<kBytes>(weights, pixels + x * kBytes, gray + x);
  // The last vector ends with the row and does some pixels again.
  const size_t last = width - lanes;
  GrayOfVector<kBytes>(weights, pixels + last * kBytes, gray + last);
}

#endif

void GrayOfRow24(const uint8_t* bgr, size_t width, uint8_t* gray) {
  GrayOfRow<3>(bgr, width, gray);
}
void GrayOfRow32(const uint8_t* bgra, size_t width, uint8_t* gray) {
  GrayOfRow<4>(bgra, width, gray);
}

}  // namespace HWY_NAMESPACE
}  // namespace rasterkit::kernels
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

}  // namespace rasterkit::kernels
#endif
