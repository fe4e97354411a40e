#include <rasterkit/kernels/palette/nearest_colors.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/palette/nearest_colors.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

// All searches carry distance and number in one lane, the number in the low eight bits: the minimum
// of the lanes is the nearest color, and the first one among equals. 3 * 1023 squared takes 22
// bits.

#ifndef RASTERKIT_NEAREST_COLORS_ONCE
#define RASTERKIT_NEAREST_COLORS_ONCE
namespace rasterkit::kernels {
namespace {

constexpr int kPlane = kCellSide * kCellSide;  // colors of a cell with the same red

// Distances of a candidate to the colors of a cell, shifted past the index. With i counting from
// the cell's least channel, d away from the candidate's, (d - i)^2 = d^2 - 2 d i + i^2; the last
// term is the same for all candidates and is skipped.
struct CellTerms {
  int32_t least;            // to the color with the least channels, and the index
  int32_t blue, green;      // -2 d
  int32_t reds[kCellSide];  // -2 d i
};

CellTerms TermsOf(const CellCandidate& candidate, int blue, int green, int red) {
  const int b = candidate.blue - blue, g = candidate.green - green, r = candidate.red - red;
  CellTerms terms{(b * b + g * g + r * r) * 256 + candidate.index, -512 * b, -512 * g, {}};
  for (int i = 0; i < kCellSide; ++i) terms.reds[i] = -512 * r * i;
  return terms;
}

// The places of a plane's colors in it.
struct Plane {
  alignas(64) int32_t blue[kPlane], green[kPlane];
};

constexpr Plane MakePlane() {
  Plane plane{};
  for (int i = 0; i < kPlane; ++i) {
    plane.blue[i] = i % kCellSide;
    plane.green[i] = i / kCellSide;
  }
  return plane;
}

constexpr Plane kPlaneColors = MakePlane();

}  // namespace
}  // namespace rasterkit::kernels
#endif  // RASTERKIT_NEAREST_COLORS_ONCE

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::CappedTag<int32_t, 16>;
using V = hn::Vec<D>;

HWY_INLINE V SquaredDifference(V a, const int32_t* b) {
  const V difference = hn::Sub(a, hn::Load(D(), b));
  return hn::Mul(difference, difference);
}

// The arrays are read whole vectors at a time; what lies beyond the list's end never wins.
uint8_t FindInList(const ColorList& colors, int blue, int green, int red) {
  const D d;
  const size_t lanes = hn::Lanes(d);
  const V b = hn::Set(d, blue), g = hn::Set(d, green), r = hn::Set(d, red);
  const auto count = static_cast<int32_t>(colors.count);
  const V far = hn::Set(d, INT32_MAX);
  V best = far;
  V number = hn::Iota(d, 0);
  for (size_t i = 0; i < colors.count; i += lanes) {
    const V distance = hn::Add(hn::Add(SquaredDifference(b, colors.blue.data() + i),
                                       SquaredDifference(g, colors.green.data() + i)),
                               SquaredDifference(r, colors.red.data() + i));
    const V key = hn::Or(hn::ShiftLeft<8>(distance), number);
    best = hn::Min(best, hn::IfThenElse(hn::Lt(number, hn::Set(d, count)), key, far));
    number = hn::Add(number, hn::Set(d, static_cast<int32_t>(lanes)));
  }
  return static_cast<uint8_t>(hn::GetLane(hn::MinOfLanes(d, best)));
}

// A vector of colors with the same red, from number `first` of the plane on, for all eight reds.
HWY_INLINE void AnswerPart(const CellTerms* terms, size_t count, size_t first, uint8_t* answers) {
  const D d;
  const hn::Rebind<uint8_t, D> bytes;
  const hn::Rebind<uint32_t, D> words;
  const V blue = hn::Load(d, kPlaneColors.blue + first);
  const V green = hn::Load(d, kPlaneColors.green + first);
  V best[kCellSide];
  for (V& lanes : best) lanes = hn::Set(d, INT32_MAX);
  for (size_t i = 0; i < count; ++i) {
    const CellTerms& t = terms[i];
    const V key = hn::Add(hn::Add(hn::Set(d, t.least), hn::Mul(blue, hn::Set(d, t.blue))),
                          hn::Mul(green, hn::Set(d, t.green)));
    for (size_t r = 0; r < kCellSide; ++r) {
      best[r] = hn::Min(best[r], hn::Add(key, hn::Set(d, t.reds[r])));
    }
  }
  for (size_t r = 0; r < kCellSide; ++r) {
    hn::StoreU(hn::TruncateTo(bytes, hn::BitCast(words, best[r])), bytes,
               answers + r * kPlane + first);
  }
}

void AnswerColors(const CellTerms* terms, size_t count, uint8_t* answers) {
  for (size_t first = 0; first < kPlane; first += hn::Lanes(D())) {
    AnswerPart(terms, count, first, answers);
  }
}

uint32_t PlaceOf(uint32_t pixel) {
  return (pixel & 7) | (pixel >> 5 & 7 << 3) | (pixel >> 10 & 7 << 6) | (pixel << 6 & 31 << 9) |
         (pixel << 3 & 31 << 14) | (pixel & 31 << 19);
}

void FindPlaces(const uint8_t* bgra, size_t count, uint32_t* places) {
  size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
  const hn::ScalableTag<uint32_t> d;
  const hn::Repartition<uint8_t, hn::ScalableTag<uint32_t>> bytes;
  for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
    const auto pixels = hn::BitCast(d, hn::LoadU(bytes, bgra + 4 * i));
    const auto masked = [d](auto bits, uint32_t mask)
                            HWY_ATTR { return hn::And(bits, hn::Set(d, mask)); };
    const auto inside = hn::Or(hn::Or(masked(pixels, 7), masked(hn::ShiftRight<5>(pixels), 7 << 3)),
                               masked(hn::ShiftRight<10>(pixels), 7 << 6));
    const auto cell = hn::Or(hn::Or(masked(hn::ShiftLeft<6>(pixels), 31 << 9),
                                    masked(hn::ShiftLeft<3>(pixels), 31 << 14)),
                             masked(pixels, 31 << 19));
    hn::StoreU(hn::Or(cell, inside), d, places + i);
  }
#endif
  for (; i < count; ++i) {
    const uint8_t* pixel = bgra + 4 * i;
    places[i] = PlaceOf(static_cast<uint32_t>(pixel[0]) | static_cast<uint32_t>(pixel[1]) << 8 |
                        static_cast<uint32_t>(pixel[2]) << 16);
  }
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(FindInList);
HWY_EXPORT(AnswerColors);
HWY_EXPORT(FindPlaces);

}  // namespace

uint8_t NearestInList(const ColorList& colors, int blue, int green, int red) {
  return HWY_DYNAMIC_DISPATCH(FindInList)(colors, blue, green, red);
}

void AnswerCell(const CellCandidate* candidates, size_t count, int blue, int green, int red,
                uint8_t* answers) {
  CellTerms terms[256];
  for (size_t i = 0; i < count; ++i) terms[i] = TermsOf(candidates[i], blue, green, red);
  HWY_DYNAMIC_DISPATCH(AnswerColors)(terms, count, answers);
}

void CellPlaces(const uint8_t* bgra, size_t count, uint32_t* places) {
  HWY_DYNAMIC_DISPATCH(FindPlaces)(bgra, count, places);
}

}  // namespace rasterkit::kernels
#endif  // HWY_ONCE
