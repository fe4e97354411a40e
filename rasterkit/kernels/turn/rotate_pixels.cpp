#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/turn/rotate_pixels.cpp>
#include <algorithm>
#include <cmath>
#include <cstring>

#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/rows/packed_pixels.h>
#include <rasterkit/kernels/turn/fast_rotation.h>
#include <rasterkit/kernels/turn/rotate_bit_runs.h>
#include <rasterkit/kernels/turn/rotate_pixels.h>

// How a run of target pixels finds its source pixels.
//
// Both coordinates step in fixed point with 40 fractional bits from the row's begin, each lifted by
// one half (so that cutting rounds) and by kMargin = 2^-17. Cutting gives the true rounding as long
// as the fraction is at least 2 kMargin, provided that the fixed-point value errs by less than
// kMargin. It does:
//
//     row's begin, a double within DoubleError() < 2^-29, and its conversion       < 2^-28
//     step error 2^-41 times at most 2^18 pixels to the tile                       < 2^-22
//     the roundings of the extended sum itself                                     < 2^-40
//     cut to 24 fractional bits for the lanes of a vector                          < 2^-24
//     step error 2^-25 times at most 127 pixels within the tile                    < 2^-18
//     together                                                                     < kMargin
//
// for pictures of at most kFastSize pixels per side; larger ones take every pixel by the exact
// rule. Pixels whose fraction is below 2 kMargin (one in 2^15, or exact halves) are done again by
// the exact rule, which decides like the extended sum.
//
// A wrong guess near a half is at most one pixel too far at the end of a run, never before its
// begin, as the margin lifts: reading stays inside the rows unless the last row is near, and such
// tiles go pixel by pixel.

#ifndef RASTERKIT_ROTATE_PIXELS_ONCE
#define RASTERKIT_ROTATE_PIXELS_ONCE
namespace rasterkit::kernels {
namespace {

constexpr int kTileWidth = 128;  // lanes have 8 bits for the distance from the tile's begin
constexpr int kPrefetchStep = 8;
constexpr int kFractionBits = 40;
constexpr int64_t kOne = int64_t{1} << kFractionBits;
constexpr int kLaneFractionBits = 24;
constexpr double kMargin = 1.0 / (1 << 17);
// Zero in these bits of a lane: its fraction is below 2 kMargin = 2^-16.
constexpr int32_t kFractionTopBits = 0x00FFFF00;

// What all pixels of a rotation share.
struct Job {
  const RotationMapping& mapping;
  ConstPixelRows source;
  PixelRows target;
  int bits;
  RotationParts parts;
  int64_t columnStep, rowStep;  // kFractionBits
  bool fast;
  // A tile's width of background pixels, packed formats one pixel a byte.
  uint8_t background[kTileWidth * 4];
};

// Where a row of the target begins in the source, and which of its pixels have one. All is counted
// from the first pixels of the parts: whole numbers do not change what is cut off.
struct RowStart {
  RotationMapping::Run run;
  int64_t column, row;  // kFractionBits, of target column 0, lifted
};

int64_t ToFixed(double value) {
  return std::llrint(std::ldexp(value, kFractionBits));
}

RowStart StartRow(const Job& job, int y) {
  const RotationParts& parts = job.parts;
  RowStart start{job.mapping.InsideRun(y, parts, job.target.width), 0, 0};
  if (job.fast) {
    const int left = parts.targetLeft, row = y + parts.targetTop;
    start.column =
        ToFixed(job.mapping.ColumnEstimate(left, row) + (0.5 + kMargin)) - parts.sourceLeft * kOne;
    start.row =
        ToFixed(job.mapping.RowEstimate(left, row) + (0.5 + kMargin)) - parts.sourceTop * kOne;
  }
  return start;
}

template <int kBits>
constexpr int PixelBytes() {
  return kBits < 8 ? 1 : kBits / 8;
}

// Moves one pixel; packed formats arrive one pixel a byte.
template <int kBits>
void MovePixel(const Job& job, int64_t column, int64_t row, uint8_t* target) {
  const uint8_t* line = job.source.data + static_cast<size_t>(row) * job.source.stride;
  if constexpr (kBits == 1) {
    *target = static_cast<uint8_t>(line[column >> 3] >> (7 - (column & 7)) & 1);
  } else if constexpr (kBits == 4) {
    *target = static_cast<uint8_t>(line[column >> 1] >> (column & 1 ? 0 : 4) & 15);
  } else {
    std::memcpy(target, line + static_cast<size_t>(column) * (kBits / 8), kBits / 8);
  }
}

template <int kBits>
void MoveExactPixel(const Job& job, int x, int y, uint8_t* target) {
  const RotationParts& parts = job.parts;
  x += parts.targetLeft;
  y += parts.targetTop;
  MovePixel<kBits>(job, job.mapping.SourceColumn(x, y) - parts.sourceLeft,
                   job.mapping.SourceRow(x, y) - parts.sourceTop, target);
}

bool IsNearHalf(int64_t fixed) {
  return (fixed >> (kFractionBits - kLaneFractionBits) & kFractionTopBits) == 0;
}

// Pixels first to last - 1 of row y, one by one; `target` is the first one's place.
template <int kBits>
void MovePixelsSingly(const Job& job, const RowStart& start, int y, int first, int last,
                      uint8_t* target) {
  int64_t column = start.column + first * job.columnStep;
  int64_t row = start.row + first * job.rowStep;
  for (int x = first; x < last; ++x, target += PixelBytes<kBits>()) {
    if (!job.fast || IsNearHalf(column) || IsNearHalf(row)) {
      MoveExactPixel<kBits>(job, x, y, target);
    } else {
      MovePixel<kBits>(job, column >> kFractionBits, row >> kFractionBits, target);
    }
    column += job.columnStep;
    row += job.rowStep;
  }
}

}  // namespace
}  // namespace rasterkit::kernels
#endif  // RASTERKIT_ROTATE_PIXELS_ONCE

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using D = hn::ScalableTag<int32_t>;
using V = hn::Vec<D>;

// Where the pixels of a run lie in the source: bytes from a base address, for packed formats also
// how far the pixel's bits are shifted. Vectors may write beyond the run's end.
struct RunPlaces {
  HWY_ALIGN int32_t offsets[kTileWidth + HWY_MAX_BYTES / 4];
  HWY_ALIGN int32_t shifts[kTileWidth + HWY_MAX_BYTES / 4];
  // Begins of the vectors that hold a pixel near a half.
  int nearVectors[kTileWidth];
  int nearCount = 0;
};

template <int kBits>
HWY_INLINE V ByteOffset(V column) {
  if constexpr (kBits == 1) return hn::ShiftRight<3>(column);
  if constexpr (kBits == 4) return hn::ShiftRight<1>(column);
  if constexpr (kBits == 8) return column;
  if constexpr (kBits == 16) return hn::ShiftLeft<1>(column);
  if constexpr (kBits == 24) return hn::Add(column, hn::ShiftLeft<1>(column));
  if constexpr (kBits == 32) return hn::ShiftLeft<2>(column);
}

template <int kBits>
HWY_INLINE V BitShift(V column) {
  const D d;
  if constexpr (kBits == 1) return hn::AndNot(column, hn::Set(d, 7));
  return hn::AndNot(hn::ShiftLeft<2>(column), hn::Set(d, 4));
}

// The part of a fixed-point number that the lanes take: its fraction, cut to their bits.
int32_t LaneFraction(int64_t fixed) {
  return static_cast<int32_t>(fixed >> (kFractionBits - kLaneFractionBits)) &
         ((1 << kLaneFractionBits) - 1);
}

int32_t LaneStep(int64_t step) {
  constexpr int kDrop = kFractionBits - kLaneFractionBits;
  return static_cast<int32_t>((step + (1 << (kDrop - 1))) >> kDrop);
}

// Places of `count` pixels whose first one lies at (column, row); whole-byte formats count columns
// from the first pixel's, packed ones from the row's begin.
template <int kBits>
HWY_INLINE void FindPlaces(const Job& job, int64_t column, int64_t row, int count,
                           RunPlaces& places) {
  const D d;
  const int lanes = static_cast<int>(hn::Lanes(d));
  const int32_t columnStep = LaneStep(job.columnStep);
  const int32_t rowStep = LaneStep(job.rowStep);
  const V lane = hn::Iota(d, 0);
  V columns = hn::Add(hn::Set(d, LaneFraction(column)), hn::Mul(lane, hn::Set(d, columnStep)));
  V rows = hn::Add(hn::Set(d, LaneFraction(row)), hn::Mul(lane, hn::Set(d, rowStep)));
  const V nextColumns = hn::Set(
      d, static_cast<int32_t>(static_cast<uint32_t>(columnStep) * static_cast<uint32_t>(lanes)));
  const V nextRows = hn::Set(
      d, static_cast<int32_t>(static_cast<uint32_t>(rowStep) * static_cast<uint32_t>(lanes)));
  const V stride = hn::Set(d, static_cast<int32_t>(job.source.stride));
  const V topBits = hn::Set(d, kFractionTopBits);
  const V begin = hn::Set(d, kBits < 8 ? static_cast<int32_t>(column >> kFractionBits) : 0);

  for (int x = 0; x < count; x += lanes) {
    V wholeColumns = hn::ShiftRight<kLaneFractionBits>(columns);
    if constexpr (kBits < 8) {
      wholeColumns = hn::Add(wholeColumns, begin);
      hn::Store(BitShift<kBits>(wholeColumns), d, places.shifts + x);
    }
    const V wholeRows = hn::ShiftRight<kLaneFractionBits>(rows);
    hn::Store(hn::Add(hn::Mul(wholeRows, stride), ByteOffset<kBits>(wholeColumns)), d,
              places.offsets + x);
    const auto isNear = hn::Or(hn::Eq(hn::And(columns, topBits), hn::Zero(d)),
                               hn::Eq(hn::And(rows, topBits), hn::Zero(d)));
    if (HWY_UNLIKELY(!hn::AllFalse(d, isNear))) places.nearVectors[places.nearCount++] = x;
    columns = hn::Add(columns, nextColumns);
    rows = hn::Add(rows, nextRows);
  }
}

// Four bytes at a time where a pixel has three: the one too many is overwritten by the next pixel,
// so the last pixel of a run takes its three alone.
template <int kBits>
HWY_INLINE void MovePlaces(const uint8_t* base, const RunPlaces& places, int count,
                           uint8_t* target) {
  const int32_t* offsets = places.offsets;
  if constexpr (kBits < 8) {
    constexpr int kMask = (1 << kBits) - 1;
    HWY_UNROLL(8)
    for (int i = 0; i < count; ++i) {
      target[i] = static_cast<uint8_t>(base[offsets[i]] >> places.shifts[i] & kMask);
    }
  } else if constexpr (kBits == 24) {
    HWY_UNROLL(8)
    for (int i = 0; i < count - 1; ++i) std::memcpy(target + 3 * i, base + offsets[i], 4);
    std::memcpy(target + 3 * (count - 1), base + offsets[count - 1], 3);
  } else {
    constexpr int kBytes = kBits / 8;
    HWY_UNROLL(8)
    for (int i = 0; i < count; ++i) std::memcpy(target + kBytes * i, base + offsets[i], kBytes);
  }
}

// The pixels of the noted vectors that are near a half, once more and exactly.
template <int kBits>
HWY_NOINLINE void MoveNearPixels(const Job& job, int64_t column, int64_t row,
                                 const RunPlaces& places, int first, int y, int count,
                                 uint8_t* target) {
  const auto columnStep = static_cast<uint32_t>(LaneStep(job.columnStep));
  const auto rowStep = static_cast<uint32_t>(LaneStep(job.rowStep));
  const auto columnFraction = static_cast<uint32_t>(LaneFraction(column));
  const auto rowFraction = static_cast<uint32_t>(LaneFraction(row));
  const int lanes = static_cast<int>(hn::Lanes(D()));
  for (int k = 0; k < places.nearCount; ++k) {
    const int end = std::min(places.nearVectors[k] + lanes, count);
    for (int i = places.nearVectors[k]; i < end; ++i) {
      const auto step = static_cast<uint32_t>(i);
      if (((columnFraction + step * columnStep) & kFractionTopBits) == 0 ||
          ((rowFraction + step * rowStep) & kFractionTopBits) == 0) {
        MoveExactPixel<kBits>(job, first + i, y, target + i * PixelBytes<kBits>());
      }
    }
  }
}

// True when a pixel of the run may come from the last two rows, or a guess may reach beyond them:
// reading four bytes could then leave the picture.
bool IsNearLastRow(const Job& job, int64_t firstRow, int64_t lastRow) {
  return (std::max(firstRow, lastRow) >> kFractionBits) >= job.source.height - 2;
}

// Pixels first to last - 1 of row y, at least one and at most kTileWidth.
template <int kBits>
HWY_INLINE void MoveRun(const Job& job, const RowStart& start, int y, int first, int last,
                        uint8_t* target) {
  const int64_t column = start.column + first * job.columnStep;
  const int64_t row = start.row + first * job.rowStep;
  if (!job.fast || IsNearLastRow(job, row, row + (last - 1 - first) * job.rowStep)) {
    return MovePixelsSingly<kBits>(job, start, y, first, last, target);
  }
  RunPlaces places;
  FindPlaces<kBits>(job, column, row, last - first, places);
  const uint8_t* base = job.source.Row(static_cast<int>(row >> kFractionBits));
  if constexpr (kBits >= 8) base += (column >> kFractionBits) * (kBits / 8);
  MovePlaces<kBits>(base, places, last - first, target);
  if (HWY_UNLIKELY(places.nearCount > 0)) {
    MoveNearPixels<kBits>(job, column, row, places, first, y, last - first, target);
  }
}

// Columns left to right - 1 of row y into `target`, the place of column `left`: background, run,
// background.
template <int kBits>
void RotateTileRow(const Job& job, const RowStart& start, int y, int left, int right,
                   uint8_t* target) {
  constexpr int kBytes = PixelBytes<kBits>();
  const int first = std::clamp(start.run.first, left, right);
  const int last = std::clamp(start.run.last, first, right);
  std::memcpy(target, job.background, static_cast<size_t>(first - left) * kBytes);
  if (first < last) MoveRun<kBits>(job, start, y, first, last, target + (first - left) * kBytes);
  std::memcpy(target + (last - left) * kBytes, job.background,
              static_cast<size_t>(right - last) * kBytes);
}

// Prefetches the next tile's source: hardware prefetchers cannot follow a slanted path. One pixel
// of eight along each row, shifted from row to row, meets nearly all cache lines.
template <int kBits>
HWY_INLINE void PrefetchTileRow(const Job& job, const RowStart& start, int y, int left, int right) {
  if (!job.fast) return;
  const int first = std::clamp(start.run.first, left, right);
  const int last = std::clamp(start.run.last, first, right);
  int x = first + (y * 5 & (kPrefetchStep - 1));
  int64_t column = start.column + x * job.columnStep;
  int64_t row = start.row + x * job.rowStep;
  for (; x < last; x += kPrefetchStep) {
    const uint8_t* line =
        job.source.data + static_cast<size_t>(row >> kFractionBits) * job.source.stride;
    __builtin_prefetch(line + static_cast<size_t>((column >> kFractionBits) * kBits / 8), 0, 3);
    column += kPrefetchStep * job.columnStep;
    row += kPrefetchStep * job.rowStep;
  }
}

template <int kBits>
void RotateTile(const Job& job, const RowStart* starts, int left, int firstRow, int lastRow) {
  const int right = std::min(left + kTileWidth, job.target.width);
  for (int y = firstRow; y < lastRow; ++y) {
    uint8_t* row = job.target.Row(y);
    const RowStart& start = starts[y - firstRow];
    PrefetchTileRow<kBits>(job, start, y, right, std::min(right + kTileWidth, job.target.width));
    if constexpr (kBits < 8) {
      uint8_t pixels[kTileWidth];
      RotateTileRow<kBits>(job, start, y, left, right, pixels);
      PackPixels(pixels, kBits, left, right - left, row);
    } else {
      RotateTileRow<kBits>(job, start, y, left, right,
                           row + static_cast<size_t>(left) * (kBits / 8));
    }
  }
}

template <int kBits>
void RotateStrip(const Job& job, int firstRow, int lastRow) {
  RowStart starts[kRotationStripRows];
  for (int y = firstRow; y < lastRow; ++y) starts[y - firstRow] = StartRow(job, y);
  for (int left = 0; left < job.target.width; left += kTileWidth) {
    RotateTile<kBits>(job, starts, left, firstRow, lastRow);
  }
}

template <int kBits>
void RotateRows(const Job& job, int firstRow, int lastRow) {
  for (int y = firstRow; y < lastRow; y += kRotationStripRows) {
    RotateStrip<kBits>(job, y, std::min(y + kRotationStripRows, lastRow));
  }
}

void RotateRowsOfFormat(const Job& job, int firstRow, int lastRow) {
  switch (job.bits) {
    case 1:
      return RotateRows<1>(job, firstRow, lastRow);
    case 4:
      return RotateRows<4>(job, firstRow, lastRow);
    case 8:
      return RotateRows<8>(job, firstRow, lastRow);
    case 16:
      return RotateRows<16>(job, firstRow, lastRow);
    case 24:
      return RotateRows<24>(job, firstRow, lastRow);
    default:
      return RotateRows<32>(job, firstRow, lastRow);
  }
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(RotateRowsOfFormat);

void FillBackground(Job& job, uint32_t pixel) {
  const int bytes = job.bits < 8 ? 1 : job.bits / 8;
  for (int i = 0; i < kTileWidth * bytes; ++i) {
    job.background[i] = static_cast<uint8_t>(pixel >> (8 * (i % bytes)));
  }
}

}  // namespace

void RotatePixels(const RotationMapping& mapping, const ConstPixelRows& source,
                  const PixelRows& target, int bitsPerPixel, uint32_t background, int firstRow,
                  int lastRow, const RotationParts& parts) {
  if (target.width <= 0) return;
  if (bitsPerPixel == 1 && TakesLongRuns(mapping, mapping.TargetHeight())) {
    RotateBitRuns(mapping, source, target, background != 0, firstRow, lastRow, parts);
    for (int y = firstRow; y < lastRow; ++y) ClearPadding(target, y, 1);
    return;
  }
  const bool fast = HasFastSize(mapping, mapping.TargetHeight());
  // Steps along rows of 2^23 pixels would leave 64 bits; the exact rule needs none.
  Job job{mapping,
          source,
          target,
          bitsPerPixel,
          parts,
          fast ? ToFixed(mapping.Cosine()) : 0,
          fast ? ToFixed(mapping.Sine()) : 0,
          fast,
          {}};
  FillBackground(job, background);
  HWY_DYNAMIC_DISPATCH(RotateRowsOfFormat)(job, firstRow, lastRow);
  for (int y = firstRow; y < lastRow; ++y) ClearPadding(target, y, bitsPerPixel);
}

}  // namespace rasterkit::kernels
#endif  // HWY_ONCE
