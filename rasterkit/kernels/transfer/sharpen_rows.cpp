#include <algorithm>
#include <array>

#include <rasterkit/kernels/transfer/sharpen_rows.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/transfer/sharpen_rows.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/rows/slope-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

/// Rows are worked on in parts whose notes fit on the stack and stay in the nearest cache.
constexpr size_t kPart = 1024;

/// For each byte of a part, 255 where a neighbor is far from it, else 0.
using FarBytes = std::array<uint8_t, 3 * kPart>;

/// The rows around a part, each from one pixel before it.
using ThreeRows = std::array<const uint8_t*, 3>;

/// Byte `i` of a part; its eight neighbors are bytes of the same channel.
void SharpenByte(int share, const ThreeRows& rows, size_t i, uint8_t* target, FarBytes& far) {
  const int center = rows[1][i + 3];
  int sum = 0, least = 255, most = 0;
  for (const uint8_t* row : rows) {
    for (const size_t step : {0, 3, 6}) {
      const int value = row[i + step];
      sum += value;
      least = std::min(least, value);
      most = std::max(most, value);
    }
  }
  const int change = ((9 * center - sum) * share + (1 << 14)) >> 15;
  target[i] = static_cast<uint8_t>(std::clamp(center + change, 0, 255));
  far[i] = std::max(most - center, center - least) >= kSharpenTolerance ? 255 : 0;
}

/// Gives pixel `x` of a part its old channels back where none of its neighbors is far.
void KeepPixel(const ThreeRows& rows, size_t x, uint8_t* target, const FarBytes& far) {
  const size_t i = 3 * x;
  if ((far[i] | far[i + 1] | far[i + 2]) == 0) std::copy_n(rows[1] + i + 3, 3, target + i);
}

#if HWY_TARGET == HWY_SCALAR

size_t SharpenWholeVectors(int, const ThreeRows&, size_t, uint8_t*, FarBytes&) {
  return 0;
}

size_t KeepWholeVectors(const ThreeRows&, size_t, uint8_t*, const FarBytes&) {
  return 0;
}

#else

/// Both halves of a vector of sums.
struct Sums {
  WordVector even, odd;
};

/// The new values of every other byte.
HWY_INLINE WordVector MovedBy(WordVector share, WordVector center, WordVector sum) {
  const Words d;
  const auto nine = hn::Add(hn::ShiftLeft<3>(center), center);
  const auto moved = hn::Add(center, hn::MulFixedPoint15(hn::Sub(nine, sum), share));
  return hn::Min(hn::Max(moved, hn::Zero(d)), hn::Set(d, 255));
}

HWY_INLINE void SharpenVector(WordVector share, const ThreeRows& rows, size_t i, uint8_t* target,
                              uint8_t* far) {
  const Bytes d;
  const auto center = hn::LoadU(d, rows[1] + i + 3);
  Sums sums{hn::Zero(Words()), hn::Zero(Words())};
  auto least = center, most = center;
  for (const uint8_t* row : rows) {
    for (const size_t step : {0, 3, 6}) {
      const auto value = hn::LoadU(d, row + i + step);
      sums.even = hn::Add(sums.even, EvenBytes(value));
      sums.odd = hn::Add(sums.odd, OddBytes(value));
      least = hn::Min(least, value);
      most = hn::Max(most, value);
    }
  }
  hn::StoreU(JoinBytes(MovedBy(share, EvenBytes(center), sums.even),
                       MovedBy(share, OddBytes(center), sums.odd)),
             d, target + i);
  const auto distance = hn::Max(hn::Sub(most, center), hn::Sub(center, least));
  const auto limit = hn::Set(d, static_cast<uint8_t>(kSharpenTolerance));
  hn::StoreU(hn::VecFromMask(d, hn::Eq(hn::Max(distance, limit), distance)), d, far + i);
}

/// Returns the bytes done.
size_t SharpenWholeVectors(int share, const ThreeRows& rows, size_t bytes, uint8_t* target,
                           FarBytes& far) {
  const size_t lanes = hn::Lanes(Bytes());
  const auto shares = hn::Set(Words(), static_cast<int16_t>(share));
  size_t i = 0;
  for (; i + lanes <= bytes; i += lanes) SharpenVector(shares, rows, i, target, far.data());
  return i;
}

/// Returns the pixels done.
size_t KeepWholeVectors(const ThreeRows& rows, size_t pixels, uint8_t* target,
                        const FarBytes& far) {
  const Bytes d;
  const size_t lanes = hn::Lanes(d);
  size_t x = 0;
  for (; x + lanes <= pixels; x += lanes) {
    ByteVector b, g, r, newB, newG, newR, farB, farG, farR;
    hn::LoadInterleaved3(d, rows[1] + 3 * x + 3, b, g, r);
    hn::LoadInterleaved3(d, target + 3 * x, newB, newG, newR);
    hn::LoadInterleaved3(d, far.data() + 3 * x, farB, farG, farR);
    const auto isFar = hn::MaskFromVec(hn::Or(hn::Or(farB, farG), farR));
    hn::StoreInterleaved3(hn::IfThenElse(isFar, newB, b), hn::IfThenElse(isFar, newG, g),
                          hn::IfThenElse(isFar, newR, r), d, target + 3 * x);
  }
  return x;
}

#endif

void SharpenPart(int share, const ThreeRows& rows, size_t pixels, uint8_t* target) {
  FarBytes far;
  for (size_t i = SharpenWholeVectors(share, rows, 3 * pixels, target, far); i < 3 * pixels; ++i) {
    SharpenByte(share, rows, i, target, far);
  }
  for (size_t x = KeepWholeVectors(rows, pixels, target, far); x < pixels; ++x) {
    KeepPixel(rows, x, target, far);
  }
}

void Sharpen(int16_t share, const uint8_t* above, const uint8_t* row, const uint8_t* below,
             size_t width, uint8_t* target) {
  for (size_t x = 0; x < width; x += kPart) {
    SharpenPart(share, {above + 3 * x, row + 3 * x, below + 3 * x}, std::min(kPart, width - x),
                target + 3 * x);
  }
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Sharpen);

}  // namespace

void SharpenRow24(int16_t share, const uint8_t* above, const uint8_t* row, const uint8_t* below,
                  size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Sharpen)(share, above, row, below, width, target);
}

}  // namespace rasterkit::kernels
#endif
