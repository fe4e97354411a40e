#include <rasterkit/kernels/rows/word_rows.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/rows/word_rows.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Red starts above green, which has `kGreenBits`; blue is in the low five bits.
template <int kGreenBits, int kPixelBytes>
void WidenOneByOne(const uint8_t* HWY_RESTRICT words, size_t width, uint8_t* HWY_RESTRICT target) {
  for (size_t x = 0; x < width; ++x, words += 2, target += kPixelBytes) {
    const int word = words[0] | words[1] << 8;
    const int green = word >> 5 & ((1 << kGreenBits) - 1);
    const int red = word >> (5 + kGreenBits) & 0x1F, blue = word & 0x1F;
    target[0] = static_cast<uint8_t>(blue << 3 | blue >> 2);
    target[1] = static_cast<uint8_t>(green << (8 - kGreenBits) | green >> (2 * kGreenBits - 8));
    target[2] = static_cast<uint8_t>(red << 3 | red >> 2);
    if (kPixelBytes == 4) target[3] = 255;
  }
}

#if HWY_TARGET == HWY_SCALAR

template <int kGreenBits, int kPixelBytes>
size_t WidenBlocks(const uint8_t*, size_t, uint8_t*) {
  return 0;
}

#else

using Words = hn::ScalableTag<uint16_t>;
using WordVector = hn::Vec<Words>;

// The words hold 0 to 255.
auto ToBytes(WordVector words) {
  const hn::Rebind<int16_t, Words> d;
  return hn::DemoteTo(hn::Rebind<uint8_t, Words>(), hn::BitCast(d, words));
}

// The channel's bits from `kFirst` on, moved to the top of a byte and repeated below.
template <int kFirst, int kBits>
auto Channel(WordVector words) {
  const Words d;
  constexpr int kGap = 8 - kBits;
  const auto channel =
      hn::And(hn::ShiftRight<kFirst>(words), hn::Set(d, static_cast<uint16_t>((1 << kBits) - 1)));
  return ToBytes(hn::Or(hn::ShiftLeft<kGap>(channel), hn::ShiftRight<kBits - kGap>(channel)));
}

template <int kGreenBits, int kPixelBytes>
size_t WidenBlocks(const uint8_t* HWY_RESTRICT row, size_t width, uint8_t* HWY_RESTRICT target) {
  const Words d;
  const hn::Repartition<uint8_t, Words> loaded;
  const hn::Rebind<uint8_t, Words> stored;
  const size_t block = hn::Lanes(d);
  const auto opaque = hn::Set(stored, 255);
  size_t x = 0;
  for (; x + block <= width; x += block) {
    const auto words = hn::BitCast(d, hn::LoadU(loaded, row + 2 * x));
    const auto b = Channel<0, 5>(words);
    const auto g = Channel<5, kGreenBits>(words);
    const auto r = Channel<5 + kGreenBits, 5>(words);
    if (kPixelBytes == 4) {
      hn::StoreInterleaved4(b, g, r, opaque, stored, target + 4 * x);
    } else {
      hn::StoreInterleaved3(b, g, r, stored, target + 3 * x);
    }
  }
  return x;
}

#endif

template <int kGreenBits, int kPixelBytes>
void Widen(const uint8_t* words, size_t width, uint8_t* target) {
  const size_t done = WidenBlocks<kGreenBits, kPixelBytes>(words, width, target);
  WidenOneByOne<kGreenBits, kPixelBytes>(words + 2 * done, width - done,
                                         target + kPixelBytes * done);
}

void Widen555To32(const uint8_t* words, size_t width, uint8_t* target) {
  Widen<5, 4>(words, width, target);
}
void Widen565To32(const uint8_t* words, size_t width, uint8_t* target) {
  Widen<6, 4>(words, width, target);
}
void Widen555To24(const uint8_t* words, size_t width, uint8_t* target) {
  Widen<5, 3>(words, width, target);
}
void Widen565To24(const uint8_t* words, size_t width, uint8_t* target) {
  Widen<6, 3>(words, width, target);
}

}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace rasterkit::kernels {

HWY_EXPORT(Widen555To32);
HWY_EXPORT(Widen565To32);
HWY_EXPORT(Widen555To24);
HWY_EXPORT(Widen565To24);

void Row555To32(const uint8_t* words, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Widen555To32)(words, width, target);
}

void Row565To32(const uint8_t* words, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Widen565To32)(words, width, target);
}

void Row555To24(const uint8_t* words, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Widen555To24)(words, width, target);
}

void Row565To24(const uint8_t* words, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Widen565To24)(words, width, target);
}

}  // namespace rasterkit::kernels

#endif
