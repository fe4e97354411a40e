#include <algorithm>
#include <cstring>

#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/kernels/gray/recolor.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/gray/recolor.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/gray/gray_test-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

template <int kBytes>
void RecolorPixels(uint8_t* pixels, size_t width, GraySide side, uint32_t color) {
  for (size_t x = 0; x < width; ++x, pixels += kBytes) {
    if (side.Holds(GrayOf(pixels[2], pixels[1], pixels[0]))) std::memcpy(pixels, &color, kBytes);
  }
}

uint8_t GrayOfWord(uint16_t word) {
  if (word == 0xFFFF) return 255;
  return GrayOf(static_cast<uint8_t>(word >> 11 << 3), static_cast<uint8_t>(word >> 5 << 2),
                static_cast<uint8_t>(word << 3));
}

void RecolorWords(uint8_t* words, size_t width, GraySide side, uint16_t word) {
  for (size_t x = 0; x < width; ++x, words += 2) {
    uint16_t pixel;
    std::memcpy(&pixel, words, 2);
    if (side.Holds(GrayOfWord(pixel))) std::memcpy(words, &word, 2);
  }
}

void ReplaceColor(uint8_t* bgr, size_t width, uint32_t from, uint32_t to) {
  for (size_t x = 0; x < width; ++x, bgr += 3) {
    if (std::memcmp(bgr, &from, 3) == 0) std::memcpy(bgr, &to, 3);
  }
}

#else

/// Gives the pixels of a quad that lie on the side `kUpper` the color. A quad without such pixels
/// is not written.
template <int kBytes, bool kUpper>
struct RecolorQuad {
  PixelOrders orders;
  GrayTest test;
  LaneVector color;

  HWY_INLINE void operator()(uint8_t* pixels) const {
    const Quad old = LoadQuad<kBytes>(orders, pixels);
    const QuadMask upper = IsAtLeast(test, old);
    if (kUpper ? NoneIsSet(upper) : AllAreSet(upper)) return;
    const Quad fresh{color, color, color, color};
    const Quad chosen = kUpper ? Choose(upper, fresh, old) : Choose(upper, old, fresh);
    StoreQuad<kBytes>(orders, chosen, pixels);
  }
};

template <int kBytes>
void RecolorPixels(uint8_t* pixels, size_t width, GraySide side, uint32_t color) {
  const PixelOrders orders = MakePixelOrders();
  const GrayTest test = MakeGrayTest(side.level);
  const auto colors = hn::Set(Lanes(), color);
  if (side.upper) {
    EditRow<kBytes>(RecolorQuad<kBytes, true>{orders, test, colors}, pixels, width);
  } else {
    EditRow<kBytes>(RecolorQuad<kBytes, false>{orders, test, colors}, pixels, width);
  }
}

/// Gives the pixels of a quad that have one color another.
struct ReplaceColorOfQuad {
  PixelOrders orders;
  LaneVector from, to;

  HWY_INLINE LaneMask IsFrom(LaneVector bgr) const {
    return hn::Eq(hn::And(bgr, hn::Set(Lanes(), 0xFFFFFF)), from);
  }

  HWY_INLINE void operator()(uint8_t* pixels) const {
    const Quad old = LoadQuad<3>(orders, pixels);
    const QuadMask same{IsFrom(old.v0), IsFrom(old.v1), IsFrom(old.v2), IsFrom(old.v3)};
    if (NoneIsSet(same)) return;
    StoreQuad<3>(orders, Choose(same, {to, to, to, to}, old), pixels);
  }
};

void ReplaceColor(uint8_t* bgr, size_t width, uint32_t from, uint32_t to) {
  const ReplaceColorOfQuad replace{MakePixelOrders(), hn::Set(Lanes(), from & 0xFFFFFF),
                                   hn::Set(Lanes(), to)};
  EditRow<3>(replace, bgr, width);
}

using Pixels16 = hn::RebindToUnsigned<Words>;
using Vector16 = hn::Vec<Pixels16>;

/// The channels' multiples of 8, 4 and 8 make every sum a multiple of 4: a quarter of 297 r + 589 g
/// + 114 b fits in a word.
constexpr uint16_t kRed16 = 297 * 8 / 4, kGreen16 = 589, kBlue16 = 114 * 8 / 4;
constexpr uint16_t kQuarterOf1000 = 250;

constexpr uint16_t kWhite16 = 0xFFFF;

/// Of all words five are exceptions of some level, no two of the same; white where there is none,
/// which is looked at apart.
uint16_t ExceptionAmongWords(int level) {
  for (const uint32_t color : GrayExceptionsOf(level)) {
    if ((color & 0x070307) == 0) {
      return static_cast<uint16_t>((color >> 8 & 0xF800) | (color >> 5 & 0x07E0) |
                                   (color >> 3 & 0x1F));
    }
  }
  return kWhite16;
}

/// The same for words; the vectors of a call are two.
struct RecolorWordVectors {
  bool upper;
  Vector16 least, exception, word;

  /// Sums of exceptions are made one less, which is below their level.
  HWY_INLINE Vector16 Sum(Vector16 pixels) const {
    const Pixels16 d;
    const auto red = hn::Mul(hn::ShiftRight<11>(pixels), hn::Set(d, kRed16));
    const auto green =
        hn::Mul(hn::And(hn::ShiftRight<5>(pixels), hn::Set(d, 63)), hn::Set(d, kGreen16));
    const auto blue = hn::Mul(hn::And(pixels, hn::Set(d, 31)), hn::Set(d, kBlue16));
    const auto minusOne = hn::VecFromMask(d, hn::Eq(pixels, exception));
    const auto sum = hn::Add(hn::Add(red, green), hn::Add(blue, minusOne));
    const auto isWhite = hn::Eq(pixels, hn::Set(d, kWhite16));
    return hn::IfThenElse(isWhite, hn::Set(d, 255 * kQuarterOf1000), sum);
  }

  HWY_INLINE void EditVector(uint8_t* target) const {
    const Pixels16 d;
    const auto old = hn::BitCast(d, hn::LoadU(Bytes(), target));
    const auto isUpper = hn::Eq(hn::SaturatedSub(least, Sum(old)), hn::Zero(d));
    const auto fresh =
        upper ? hn::IfThenElse(isUpper, word, old) : hn::IfThenElse(isUpper, old, word);
    hn::StoreU(hn::BitCast(Bytes(), fresh), Bytes(), target);
  }

  HWY_INLINE void operator()(uint8_t* words) const {
    EditVector(words);
    EditVector(words + hn::Lanes(Bytes()));
  }
};

void RecolorWords(uint8_t* words, size_t width, GraySide side, uint16_t word) {
  const Pixels16 d;
  const int level = std::clamp(side.level, 0, 256);
  const RecolorWordVectors recolor{side.upper,
                                   hn::Set(d, static_cast<uint16_t>(kQuarterOf1000 * level)),
                                   hn::Set(d, ExceptionAmongWords(level)), hn::Set(d, word)};
  EditRow<2>(recolor, words, width);
}

#endif

void Recolor24(uint8_t* bgr, size_t width, GraySide side, uint32_t color) {
  RecolorPixels<3>(bgr, width, side, color);
}

void Recolor32(uint8_t* bgra, size_t width, GraySide side, uint32_t color) {
  RecolorPixels<4>(bgra, width, side, color);
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Recolor24);
HWY_EXPORT(Recolor32);
HWY_EXPORT(RecolorWords);
HWY_EXPORT(ReplaceColor);

}  // namespace

void RecolorByGray24(uint8_t* bgr, size_t width, GraySide side, uint32_t color) {
  HWY_DYNAMIC_DISPATCH(Recolor24)(bgr, width, side, color);
}

void RecolorByGray32(uint8_t* bgra, size_t width, GraySide side, uint32_t color) {
  HWY_DYNAMIC_DISPATCH(Recolor32)(bgra, width, side, color);
}

void RecolorByGray16(uint8_t* words, size_t width, GraySide side, uint16_t word) {
  HWY_DYNAMIC_DISPATCH(RecolorWords)(words, width, side, word);
}

void ReplaceColor24(uint8_t* bgr, size_t width, uint32_t from, uint32_t to) {
  HWY_DYNAMIC_DISPATCH(ReplaceColor)(bgr, width, from, to);
}

}  // namespace rasterkit::kernels
#endif
