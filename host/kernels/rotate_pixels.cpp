#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rasterkit/host/kernels/rotate_pixels.cpp"
#include <algorithm>
#include <cmath>
#include <cstring>

#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/host/kernels/packed_pixels.h>
#include <rasterkit/host/kernels/rotate_pixels.h>

// How a run of target pixels finds its source pixels.
//
// Both coordinates step in fixed point with 40 fractional bits from the row's begin, each lifted by
// one half (so that cutting rounds) and by kMargin. Cutting gives the true rounding as long as the
// fraction is at least 2 kMargin, provided that the fixed-point value errs by less than kMargin. It
// does:
//
//     row's begin, a double within DoubleError() < 2^-29, and its conversion       < 2^-28
//     step error 2^-41 times at most 2^18 pixels to the tile                       < 2^-22
//     the roundings of the extended sum itself                                     < 2^-40
//     cut to 24 fractional bits for the lanes of a vector                          < 2^-24
//     step error 2^-25 times at most 127 pixels within the tile                    < 2^-18
//     together                                                                     < 2^-17 =
//     kMargin
//
// for pictures of at most kFastSize pixels a side; larger ones take every pixel by the exact rule.
// Pixels whose fraction is below 2 kMargin (one in 2^15, or exact halves) are done again by the
// exact rule, which decides like the extended sum.
//
// A wrong guess near a half is at most one pixel too far at the end of a run, never before its
// begin, as the margin lifts: reading stays inside the rows unless the last row is near, and such
// tiles go pixel by pixel.

#ifndef RASTERKIT_ROTATE_PIXELS_ONCE
#define RASTERKIT_ROTATE_PIXELS_ONCE
namespace rasterkit::kernels {
namespace {

constexpr int kTileWidth = 128;  // lanes have 8 bits for the distance from the tile's begin
constexpr int kFastSize = 1 << 17;
constexpr int kFractionBits = 40;
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
  int64_t columnStep, rowStep;  // kFractionBits
  bool fast;
  // A tile's width of background pixels, packed formats one pixel a byte.
  uint8_t background[kTileWidth * 4];
};

// Where a row of the target begins in the source, and which of its pixels have one.
struct RowStart {
  RotationMapping::Run run;
  int64_t column, row;  // kFractionBits, of target column 0, lifted
};

int64_t ToFixed(double value) {
  return std::llrint(std::ldexp(value, kFractionBits));
}

RowStart StartRow(const Job& job, int y) {
  RowStart start{job.mapping.InsideRun(y), 0, 0};
  if (job.fast) {
    start.column = ToFixed(job.mapping.ColumnEstimate(0, y) + (0.5 + kMargin));
    start.row = ToFixed(job.mapping.RowEstimate(0, y) + (0.5 + kMargin));
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
  if constexpr (kBits == 1)
    *target = static_cast<uint8_t>(line[column >> 3] >> (7 - (column & 7)) & 1);
  else if constexpr (kBits == 4)
    *target = static_cast<uint8_t>(line[column >> 1] >> (column & 1 ? 0 : 4) & 15);
  else
    std::memcpy(target, line + static_cast<size_t>(column) * (kBits / 8), kBits / 8);
}

template <int kBits>
void MoveExactPixel(const Job& job, int x, int y, uint8_t* target) {
  MovePixel<kBits>(job, job.mapping.SourceColumn(x, y), job.mapping.SourceRow(x, y), target);
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
    if (!job.fast || IsNearHalf(column) || IsNearHalf(row))
      MoveExactPixel<kBits>(job, x, y, target);
    else
      MovePixel<kBits>(job, column >> kFractionBits, row >> kFractionBits, target);
    column += job.columnStep;
    row += job.rowStep;
  }
}

}  // namespace
}  // namespace rasterkit::kernels
#endif  // RASTERKIT_ROTATE_PIXELS_ONCE

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels {
namespace HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Gathering pays where the processor gathers by itself; elsewhere pixels go one by one.
#undef RASTERKIT_GATHERS
#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
#define RASTERKIT_GATHERS 1
#else
#define RASTERKIT_GATHERS 0
#endif

#if RASTERKIT_GATHERS

using D = hn::ScalableTag<int32_t>;
using DU = hn::ScalableTag<uint32_t>;
using V = hn::Vec<D>;
using VU = hn::Vec<DU>;
constexpr int kLanes = HWY_TARGET == HWY_AVX2 ? 8 : 16;

// Bytes that StorePixels writes: 24-bit pixels leave kLanes bytes of rubbish behind the last one.
template <int kBits>
constexpr int StoredBytes() {
  return kBits == 24 ? 4 * kLanes : PixelBytes<kBits>() * kLanes;
}

alignas(16) constexpr uint8_t kDropFourth[16] = {0,  1,  2,  4,  5,   6,   8,   9,
                                                 10, 12, 13, 14, 128, 128, 128, 128};
alignas(64) constexpr int32_t kCloseGaps[16] = {0,  1,  2,  4,  5, 6, 8,  9,
                                                10, 12, 13, 14, 3, 7, 11, 15};
alignas(64) constexpr int32_t kCloseGaps8[8] = {0, 1, 2, 4, 5, 6, 3, 7};

// Stores the low kBits (packed formats: a byte) of each lane one after another.
template <int kBits>
void StorePixels(VU pixels, uint8_t* target) {
  const DU d;
  if constexpr (kBits == 32) {
    hn::StoreU(hn::BitCast(hn::ScalableTag<uint8_t>(), pixels), hn::ScalableTag<uint8_t>(), target);
  } else if constexpr (kBits == 24) {
    const hn::ScalableTag<uint8_t> d8;
    const auto squeezed =
        hn::TableLookupBytes(hn::BitCast(d8, pixels), hn::LoadDup128(d8, kDropFourth));
    const auto order = hn::SetTableIndices(d, kLanes == 8 ? kCloseGaps8 : kCloseGaps);
    hn::StoreU(hn::BitCast(d8, hn::TableLookupLanes(hn::BitCast(d, squeezed), order)), d8, target);
  } else if constexpr (kBits == 16) {
    const hn::Rebind<uint16_t, D> d16;
    const auto words = hn::DemoteTo(d16, hn::BitCast(D(), hn::And(pixels, hn::Set(d, 0xFFFF))));
    alignas(64) uint16_t lanes[kLanes];
    hn::Store(words, d16, lanes);
    std::memcpy(target, lanes, sizeof(lanes));
  } else {
    const hn::Rebind<uint8_t, D> d8;
    hn::StoreU(hn::U8FromU32(hn::And(pixels, hn::Set(d, 0xFF))), d8, target);
  }
}

// The source pixels of a vector's lanes; `offset` in bytes, `column` absolute (packed formats
// only).
template <int kBits>
VU GatherPixels(const uint8_t* base, V offset, V column) {
  const DU d;
  const VU found = hn::GatherOffset(d, reinterpret_cast<const uint32_t*>(base), offset);
  if constexpr (kBits == 1) {
    const V shift = hn::Sub(hn::Set(D(), 7), hn::And(column, hn::Set(D(), 7)));
    return hn::And(hn::Shr(found, hn::BitCast(d, shift)), hn::Set(d, 1));
  } else if constexpr (kBits == 4) {
    const V shift = hn::AndNot(hn::ShiftLeft<2>(column), hn::Set(D(), 4));
    return hn::And(hn::Shr(found, hn::BitCast(d, shift)), hn::Set(d, 15));
  } else {
    return found;
  }
}

template <int kBits>
V ByteOffset(V column) {
  if constexpr (kBits == 1) return hn::ShiftRight<3>(column);
  if constexpr (kBits == 4) return hn::ShiftRight<1>(column);
  if constexpr (kBits == 8) return column;
  if constexpr (kBits == 16) return hn::ShiftLeft<1>(column);
  if constexpr (kBits == 24) return hn::Add(column, hn::ShiftLeft<1>(column));
  if constexpr (kBits == 32) return hn::ShiftLeft<2>(column);
}

// True when a pixel of the run may come from the last two rows, or a guess may reach beyond them:
// gathering four bytes could then leave the picture.
bool IsNearLastRow(const Job& job, int64_t firstRow, int64_t lastRow) {
  return (std::max(firstRow, lastRow) >> kFractionBits) >= job.source.height - 2;
}

// Pixels first to last - 1 of row y, at most kTileWidth; `room` counts the bytes from `target` on
// that may be written.
template <int kBits>
void MoveRun(const Job& job, const RowStart& start, int y, int first, int last, uint8_t* target,
             ptrdiff_t room) {
  const int64_t column = start.column + first * job.columnStep;
  const int64_t row = start.row + first * job.rowStep;
  if (!job.fast || IsNearLastRow(job, row, row + (last - 1 - first) * job.rowStep))
    return MovePixelsSingly<kBits>(job, start, y, first, last, target);

  const D d;
  constexpr int kDrop = kFractionBits - kLaneFractionBits;
  constexpr int32_t kFractionMask = (1 << kLaneFractionBits) - 1;
  const auto columnStep = static_cast<int32_t>((job.columnStep + (1 << (kDrop - 1))) >> kDrop);
  const auto rowStep = static_cast<int32_t>((job.rowStep + (1 << (kDrop - 1))) >> kDrop);
  const V lane = hn::Iota(d, 0);
  V columns = hn::Add(hn::Set(d, static_cast<int32_t>(column >> kDrop) & kFractionMask),
                      hn::Mul(lane, hn::Set(d, columnStep)));
  V rows = hn::Add(hn::Set(d, static_cast<int32_t>(row >> kDrop) & kFractionMask),
                   hn::Mul(lane, hn::Set(d, rowStep)));
  const V columnsStep = hn::Set(d, columnStep * kLanes);
  const V rowsStep = hn::Set(d, rowStep * kLanes);
  const V stride = hn::Set(d, static_cast<int32_t>(job.source.stride));
  const V topBits = hn::Set(d, kFractionTopBits);

  // Whole-byte formats count columns from the run's begin, packed ones from the row's.
  const int64_t baseColumn = column >> kFractionBits;
  const uint8_t* base = job.source.Row(static_cast<int>(row >> kFractionBits)) +
                        (kBits < 8 ? 0 : baseColumn * (kBits / 8));
  const V columnOffset = hn::Set(d, kBits < 8 ? static_cast<int32_t>(baseColumn) : 0);

  for (int x = first; x < last; x += kLanes) {
    const int count = std::min(last - x, kLanes);
    V column24 = hn::ShiftRight<kLaneFractionBits>(columns);
    if constexpr (kBits < 8) column24 = hn::Add(column24, columnOffset);
    V offset = hn::Add(hn::Mul(hn::ShiftRight<kLaneFractionBits>(rows), stride),
                       ByteOffset<kBits>(column24));
    // Lanes behind the run read its first pixel's place instead of somewhere outside.
    if (count < kLanes) {
      const auto used = hn::FirstN(d, static_cast<size_t>(count));
      offset = hn::IfThenElseZero(used, offset);
    }
    const VU pixels = GatherPixels<kBits>(base, offset, column24);
    if (count == kLanes && room >= StoredBytes<kBits>()) {
      StorePixels<kBits>(pixels, target);
    } else {
      uint8_t few[StoredBytes<kBits>()];
      StorePixels<kBits>(pixels, few);
      std::memcpy(target, few, static_cast<size_t>(count) * PixelBytes<kBits>());
    }
    const auto near = hn::Or(hn::Eq(hn::And(columns, topBits), hn::Zero(d)),
                             hn::Eq(hn::And(rows, topBits), hn::Zero(d)));
    if (HWY_UNLIKELY(!hn::AllFalse(d, near))) {
      uint8_t bits[8] = {};
      hn::StoreMaskBits(d, near, bits);
      for (int i = 0; i < count; ++i)
        if (bits[i / 8] >> (i % 8) & 1)
          MoveExactPixel<kBits>(job, x + i, y, target + i * PixelBytes<kBits>());
    }
    columns = hn::Add(columns, columnsStep);
    rows = hn::Add(rows, rowsStep);
    target += kLanes * PixelBytes<kBits>();
    room -= kLanes * PixelBytes<kBits>();
  }
}

#else

template <int kBits>
void MoveRun(const Job& job, const RowStart& start, int y, int first, int last, uint8_t* target,
             ptrdiff_t) {
  MovePixelsSingly<kBits>(job, start, y, first, last, target);
}

#endif  // RASTERKIT_GATHERS

// Columns left to right - 1 of row y into `target`, the place of column `left`: background, run,
// background, in this order, as a run may leave rubbish behind its end.
template <int kBits>
void RotateTileRow(const Job& job, const RowStart& start, int y, int left, int right,
                   uint8_t* target, ptrdiff_t room) {
  constexpr int kBytes = PixelBytes<kBits>();
  const int first = std::clamp(start.run.first, left, right);
  const int last = std::clamp(start.run.last, first, right);
  std::memcpy(target, job.background, static_cast<size_t>(first - left) * kBytes);
  if (first < last)
    MoveRun<kBits>(job, start, y, first, last, target + (first - left) * kBytes,
                   room - (first - left) * kBytes);
  std::memcpy(target + (last - left) * kBytes, job.background,
              static_cast<size_t>(right - last) * kBytes);
}

// Asks for the source of the tile to come while this one is done: the processor does not foresee
// slanted paths. One pixel of 16 along each row, shifted from row to row, meets most cache lines.
template <int kBits>
HWY_INLINE void PrefetchTileRow(const Job& job, const RowStart& start, int y, int left, int right) {
  const int first = std::clamp(start.run.first, left, right);
  const int last = std::clamp(start.run.last, first, right);
  int x = first + (y * 5 & 15);
  int64_t column = start.column + x * job.columnStep;
  int64_t row = start.row + x * job.rowStep;
  for (; x < last; x += 16) {
    const uint8_t* line =
        job.source.data + static_cast<size_t>(row >> kFractionBits) * job.source.stride;
    __builtin_prefetch(line + static_cast<size_t>((column >> kFractionBits) * kBits / 8), 0, 3);
    column += 16 * job.columnStep;
    row += 16 * job.rowStep;
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
      uint8_t pixels[kTileWidth + 16];
      RotateTileRow<kBits>(job, start, y, left, right, pixels, sizeof(pixels));
      PackPixels(pixels, kBits, left, right - left, row);
    } else {
      RotateTileRow<kBits>(job, start, y, left, right,
                           row + static_cast<size_t>(left) * (kBits / 8),
                           static_cast<ptrdiff_t>(job.target.width - left) * (kBits / 8));
    }
  }
}

template <int kBits>
void RotateStrip(const Job& job, int firstRow, int lastRow) {
  RowStart starts[kRotationStripRows];
  for (int y = firstRow; y < lastRow; ++y) starts[y - firstRow] = StartRow(job, y);
  for (int left = 0; left < job.target.width; left += kTileWidth)
    RotateTile<kBits>(job, starts, left, firstRow, lastRow);
}

template <int kBits>
void RotateRows(const Job& job, int firstRow, int lastRow) {
  for (int y = firstRow; y < lastRow; y += kRotationStripRows)
    RotateStrip<kBits>(job, y, std::min(y + kRotationStripRows, lastRow));
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
}  // namespace HWY_NAMESPACE
}  // namespace rasterkit::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(RotateRowsOfFormat);

void FillBackground(Job& job, uint32_t pixel) {
  const int bytes = job.bits < 8 ? 1 : job.bits / 8;
  for (int i = 0; i < kTileWidth * bytes; ++i)
    job.background[i] = static_cast<uint8_t>(pixel >> (8 * (i % bytes)));
}

}  // namespace

void RotatePixels(const RotationMapping& mapping, const ConstPixelRows& source,
                  const PixelRows& target, int bitsPerPixel, uint32_t background, int firstRow,
                  int lastRow) {
  if (target.width <= 0) return;
  Job job{mapping,
          source,
          target,
          bitsPerPixel,
          ToFixed(mapping.Cosine()),
          ToFixed(mapping.Sine()),
          source.width <= kFastSize && source.height <= kFastSize &&
              target.width <= 2 * kFastSize && target.height <= 2 * kFastSize,
          {}};
  FillBackground(job, background);
  HWY_DYNAMIC_DISPATCH(RotateRowsOfFormat)(job, firstRow, lastRow);
  for (int y = firstRow; y < lastRow; ++y) ClearPadding(target, y, bitsPerPixel);
}

}  // namespace rasterkit::kernels
#endif  // HWY_ONCE
