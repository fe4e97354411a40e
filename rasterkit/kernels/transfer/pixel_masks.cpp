#include <algorithm>

#include <rasterkit/kernels/transfer/pixel_masks.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/transfer/pixel_masks.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/rows/expand_grays-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

constexpr uint8_t kNearWhite = 250;

// Each question twice: for one pixel, and for vectors of blue, green and red.
struct IsNearWhite {
  bool asked;
  bool operator()(uint8_t b, uint8_t g, uint8_t r) const {
    return (std::min(b, std::min(g, r)) > kNearWhite) == asked;
  }
  template <class D, class V>
  HWY_INLINE V OfVectors(D d, V b, V g, V r) const {
    // Unsigned bytes have no comparison of their own everywhere.
    const auto least = hn::Min(b, hn::Min(g, r));
    const auto limit = hn::Set(d, kNearWhite + 1);
    const auto yes = hn::VecFromMask(d, hn::Eq(hn::Max(least, limit), least));
    return hn::Xor(yes, hn::Set(d, asked ? 0 : 0xFF));
  }
};

struct IsOtherColor {
  uint8_t blue, green, red;
  bool operator()(uint8_t b, uint8_t g, uint8_t r) const {
    return b != blue || g != green || r != red;
  }
  template <class D, class V>
  HWY_INLINE V OfVectors(D d, V b, V g, V r) const {
    const auto differences =
        hn::Or(hn::Xor(b, hn::Set(d, blue)),
               hn::Or(hn::Xor(g, hn::Set(d, green)), hn::Xor(r, hn::Set(d, red))));
    return hn::VecFromMask(d, hn::Ne(differences, hn::Zero(d)));
  }
};

struct IsBlackOrWhite {
  bool operator()(uint8_t b, uint8_t g, uint8_t r) const {
    return (b == 0 && g == 0 && r == 0) || (b == 255 && g == 255 && r >= 254);
  }
  template <class D, class V>
  HWY_INLINE V OfVectors(D d, V b, V g, V r) const {
    const auto black = hn::Eq(hn::Or(b, hn::Or(g, r)), hn::Zero(d));
    const auto nearlyRed = hn::Or(r, hn::Set(d, 1));
    const auto white = hn::Eq(hn::And(b, hn::And(g, nearlyRed)), hn::Set(d, 255));
    return hn::Or(hn::VecFromMask(d, black), hn::VecFromMask(d, white));
  }
};

template <class Question>
void AskOneByOne(const Question& question, const uint8_t* bgr, size_t width, uint8_t* mask) {
  for (size_t i = 0; i < 3 * width; i += 3) {
    std::fill_n(mask + i, 3, question(bgr[i], bgr[i + 1], bgr[i + 2]) ? 255 : 0);
  }
}

void ExpandOneByOne(const uint8_t* grays, size_t width, uint8_t* bgr) {
  for (size_t x = 0; x < width; ++x) std::fill_n(bgr + 3 * x, 3, grays[x]);
}

#if HWY_TARGET == HWY_SCALAR

template <class Question>
void Ask(const Question& question, const uint8_t* bgr, size_t width, uint8_t* mask) {
  AskOneByOne(question, bgr, width, mask);
}

void Expand(const uint8_t* grays, size_t width, uint8_t* bgr) {
  ExpandOneByOne(grays, width, bgr);
}

bool MayHold(const uint8_t*, size_t) {
  return true;
}

#else

using Bytes = hn::ScalableTag<uint8_t>;

HWY_INLINE void StoreExpanded(const ExpandGrays& expand, hn::Vec<Bytes> values, uint8_t* bgr) {
  const Bytes d;
  const size_t lanes = hn::Lanes(d);
  hn::StoreU(expand.Part<0>(values), d, bgr);
  hn::StoreU(expand.Part<1>(values), d, bgr + lanes);
  hn::StoreU(expand.Part<2>(values), d, bgr + 2 * lanes);
}

template <class Question>
void Ask(const Question& question, const uint8_t* bgr, size_t width, uint8_t* mask) {
  const Bytes d;
  const ExpandGrays expand;
  const size_t lanes = hn::Lanes(d);
  size_t x = 0;
  for (; x + lanes <= width; x += lanes) {
    auto b = hn::Zero(d), g = b, r = b;
    hn::LoadInterleaved3(d, bgr + 3 * x, b, g, r);
    StoreExpanded(expand, question.OfVectors(d, b, g, r), mask + 3 * x);
  }
  AskOneByOne(question, bgr + 3 * x, width - x, mask + 3 * x);
}

void Expand(const uint8_t* grays, size_t width, uint8_t* bgr) {
  const Bytes d;
  const ExpandGrays expand;
  const size_t lanes = hn::Lanes(d);
  size_t x = 0;
  for (; x + lanes <= width; x += lanes) {
    StoreExpanded(expand, hn::LoadU(d, grays + x), bgr + 3 * x);
  }
  ExpandOneByOne(grays + x, width - x, bgr + 3 * x);
}

/// Looks at every three neighboring bytes, whether they are a pixel or not.
bool MayHold(const uint8_t* bgr, size_t width) {
  const Bytes d;
  const size_t lanes = hn::Lanes(d), count = 3 * width;
  if (count < lanes + 2) return true;
  const auto one = hn::Set(d, 1);
  auto least = hn::Set(d, 255), most = hn::Zero(d);
  const auto look = [&](const uint8_t* bytes) {
    const auto b = hn::LoadU(d, bytes), g = hn::LoadU(d, bytes + 1), r = hn::LoadU(d, bytes + 2);
    least = hn::Min(least, hn::Or(b, hn::Or(g, r)));
    most = hn::Max(most, hn::And(b, hn::And(g, hn::Or(r, one))));
  };
  for (size_t i = 0; i + lanes + 2 <= count; i += lanes) look(bgr + i);
  look(bgr + count - lanes - 2);
  const auto found = hn::Or(hn::Eq(least, hn::Zero(d)), hn::Eq(most, hn::Set(d, 255)));
  return !hn::AllFalse(d, found);
}

#endif

void NearWhite(const uint8_t* bgr, size_t width, bool asked, uint8_t* mask) {
  Ask(IsNearWhite{asked}, bgr, width, mask);
}

void OtherColor(const uint8_t* bgr, size_t width, uint32_t color, uint8_t* mask) {
  Ask(IsOtherColor{static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
                   static_cast<uint8_t>(color >> 16)},
      bgr, width, mask);
}

void BlackOrWhite(const uint8_t* bgr, size_t width, uint8_t* mask) {
  Ask(IsBlackOrWhite(), bgr, width, mask);
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(NearWhite);
HWY_EXPORT(OtherColor);
HWY_EXPORT(BlackOrWhite);
HWY_EXPORT(Expand);
HWY_EXPORT(MayHold);

}  // namespace

void NearWhite24(const uint8_t* bgr, size_t width, bool asked, uint8_t* mask) {
  HWY_DYNAMIC_DISPATCH(NearWhite)(bgr, width, asked, mask);
}

void OtherColor24(const uint8_t* bgr, size_t width, uint32_t color, uint8_t* mask) {
  HWY_DYNAMIC_DISPATCH(OtherColor)(bgr, width, color, mask);
}

void BlackOrWhite24(const uint8_t* bgr, size_t width, uint8_t* mask) {
  HWY_DYNAMIC_DISPATCH(BlackOrWhite)(bgr, width, mask);
}

bool MayHoldBlackOrWhite24(const uint8_t* bgr, size_t width) {
  return HWY_DYNAMIC_DISPATCH(MayHold)(bgr, width);
}

void ExpandGrays24(const uint8_t* grays, size_t width, uint8_t* bgr) {
  HWY_DYNAMIC_DISPATCH(Expand)(grays, width, bgr);
}

}  // namespace rasterkit::kernels
#endif
