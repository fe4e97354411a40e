#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/turn/rotate_bit_runs.cpp>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/turn/fast_rotation.h>
#include <rasterkit/kernels/turn/rotate_bit_runs.h>

// Where a run ends.
//
// Along a target row the source row changes by one at places that lie 1 / |sine| apart, and the
// source column, which otherwise moves by one per pixel, repeats once at places that lie
// 1 / (1 - |cosine|) apart. Both kinds of breaks are stepped in fixed point from the row's begin. A
// break is the first pixel at or past its place, certainly so where no whole number lies within
// `margin` of the place; the others (nearly none) are found by asking the exact rule.
//
// The margin covers, for pictures of at most kFastSize pixels per side,
//
//     the row's begin, a double within DoubleError() < 2^-29, and the roundings of the
//     extended sum, both divided by the slope                                       < 2^-28 / slope
//     division and conversion to fixed point                                        < 2^-34 + 2^-41
//     the step's error, at most 2^-40 times at most 2^16 breaks                     < 2^-24
//
// Slopes of the row are at least kLeastSine. The column's may be so small that the margin takes
// half a pixel: then each of its breaks, few in a row, goes by the exact rule. It is above 2^-28
// still, far more than the extended sum's roundings: so a column never advances by two.

#ifndef RASTERKIT_ROTATE_BIT_RUNS_ONCE
#define RASTERKIT_ROTATE_BIT_RUNS_ONCE
namespace rasterkit::kernels {
namespace {

constexpr double kLeastSine = 1.0 / (1 << 13);
// Beyond it runs are so short that single pixels are faster.
constexpr double kMostSine = 0.2;

constexpr int kFractionBits = 40;
constexpr double kFar = 1 << 20;  // pixels; past the end of any row

// Pixels that a word holds from any bit of its first byte on, in whole bytes.
constexpr int kWordPixels = 56;
constexpr int kPrefetchRows = 12;

struct Job {
  const RotationMapping& mapping;
  ConstPixelRows source;
  PixelRows target;
  bool background;
  RotationParts parts;
};

// Where the breaks of one kind lie in a target row: `distance / slope` is the first place,
// `1 / slope` the step to the next one. With slope 0 there are none.
struct BreakLine {
  BreakLine(double distance, double slope) {
    if (slope == 0) return;
    place = ToFixed(std::clamp(distance / slope, -kFar, kFar));
    step = ToFixed(std::min(1 / slope, kFar));
    margin = ToFixed(std::min(0x1p-28 / slope + 0x1p-22, 0.5));
  }

  static int64_t ToFixed(double value) { return std::llrint(std::ldexp(value, kFractionBits)); }

  int64_t place = ToFixed(kFar);
  int64_t step = 0;
  int64_t margin = 0;
};

// The first x after `begin` for which `changed` holds, `last` when there is none before. `guess` is
// not before it, as places are lifted by their margin; `changed(begin)` is false.
template <typename Changed>
HWY_NOINLINE int SearchBreak(int begin, int guess, int last, const Changed& changed) {
  int x = std::clamp(guess, begin + 1, last);
  while (x > begin + 1 && changed(x - 1)) --x;
  return x;
}

// Writes the breaks between `first` and `last` in their order, then `end`; returns the place after
// it. `changed(x, i)` is the exact rule: true from break number i on.
template <typename Changed>
int* ListBreaks(const BreakLine& line, int first, int last, int end, int* breaks,
                const Changed& changed) {
  constexpr int64_t kFraction = (int64_t{1} << kFractionBits) - 1;
  int64_t lifted = line.place + line.margin;
  int begin = first;
  for (int i = 0;; ++i, lifted += line.step) {
    int x = static_cast<int>(lifted >> kFractionBits) + 1;
    if ((lifted & kFraction) < 2 * line.margin) [[unlikely]] {
      x = SearchBreak(begin, x, last, [&](int at) { return changed(at, i); });
    }
    if (x >= last) break;
    *breaks++ = begin = x;
  }
  *breaks++ = end;
  return breaks;
}

uint64_t SwapBytes(uint64_t word) {
  return __builtin_bswap64(word);
}

// The bits of each byte in the opposite order.
uint64_t ReverseBytes(uint64_t word) {
  constexpr uint64_t kOdd = 0x5555555555555555, kPairs = 0x3333333333333333,
                     kNibbles = 0x0F0F0F0F0F0F0F0F;
  word = (word >> 1 & kOdd) | (word & kOdd) << 1;
  word = (word >> 2 & kPairs) | (word & kPairs) << 2;
  return (word >> 4 & kNibbles) | (word & kNibbles) << 4;
}

// Bytes of a picture as words, also at its ends, where bytes outside read as 0.
class WordReader {
 public:
  explicit WordReader(const ConstPixelRows& rows)
      : data_(rows.data),
        size_(static_cast<ptrdiff_t>(rows.stride * static_cast<size_t>(rows.height))) {}

  // The eight bytes from `offset` on, the first one in the low bits.
  uint64_t Read(ptrdiff_t offset) const {
    if (offset < 0 || offset > size_ - 8) [[unlikely]] {
      return ReadAtEnd(data_, size_, offset);
    }
    uint64_t word;
    std::memcpy(&word, data_ + offset, 8);
    return word;
  }

  void Prefetch(ptrdiff_t offset) const { __builtin_prefetch(data_ + offset, 0, 3); }

 private:
  HWY_NOINLINE static uint64_t ReadAtEnd(const uint8_t* data, ptrdiff_t size, ptrdiff_t offset) {
    uint64_t word = 0;
    for (int i = 0; i < 8; ++i) {
      if (offset + i >= 0 && offset + i < size) word |= uint64_t{data[offset + i]} << (8 * i);
    }
    return word;
  }

  const uint8_t* data_;
  ptrdiff_t size_;
};

// Pixels of a picture as words: at least kWordPixels, the first one in the top bit. `row` is the
// offset of a row's begin; kDirection says where the pixels after the first one lie.
template <int kDirection>
HWY_INLINE uint64_t ReadPixels(const WordReader& reader, ptrdiff_t row, int column) {
  const ptrdiff_t offset = row + (column >> 3);
  if constexpr (kDirection > 0) return SwapBytes(reader.Read(offset)) << (column & 7);
  return ReverseBytes(reader.Read(offset - 7)) << (7 - (column & 7));
}

// Writes a row from the left. Each word is stored whole and what is too much of it overwritten by
// the next one, within the row's bytes.
class BitWriter {
 public:
  BitWriter(uint8_t* row, size_t size) : place_(row), end_(row + size) {}

  void PutSame(bool pixel, int count) {
    const uint64_t word = pixel ? ~uint64_t{0} : 0;
    if (count > kWordPixels) {
      const int first = 8 - count_;
      Put(word, first);
      const int bytes = (count - first) / 8;
      std::memset(place_, static_cast<int>(word & 255), static_cast<size_t>(bytes));
      place_ += bytes;
      count -= first + 8 * bytes;
    }
    Put(word, count);
  }

  // The first `count` pixels of a word, at most kWordPixels.
  HWY_INLINE void Put(uint64_t word, int count) {
    pending_ |= word >> count_;
    if (end_ - place_ < 8) [[unlikely]] {
      StoreAtEnd(SwapBytes(pending_), place_, end_);
    } else {
      Store(SwapBytes(pending_));
    }
    count_ += count;
    place_ += count_ >> 3;
    pending_ <<= count_ & ~7;
    count_ &= 7;
    pending_ &= ~(~uint64_t{0} >> count_);
  }

 private:
  HWY_INLINE void Store(uint64_t bytes) { std::memcpy(place_, &bytes, 8); }

  HWY_NOINLINE static void StoreAtEnd(uint64_t bytes, uint8_t* place, const uint8_t* end) {
    for (; place < end; ++place, bytes >>= 8) *place = static_cast<uint8_t>(bytes);
  }

  uint8_t* place_;
  uint8_t* end_;
  uint64_t pending_ = 0;
  int count_ = 0;  // pixels in the top bits of `pending_`, less than a byte
};

// Where the runs of a target row end, counted in the whole picture, and where its first one begins
// in the part of the source.
struct RowRuns {
  int first, last;
  int64_t row, column;
  const int* rowBreaks;     // then a number past `last`
  const int* columnBreaks;  // then `last`
};

// The breaks of a row of the target's part; `breaks` has room for them.
RowRuns FindRuns(const Job& job, int rowOfPart, RotationMapping::Run run, int* breaks) {
  const RotationMapping& mapping = job.mapping;
  const int y = rowOfPart + job.parts.targetTop;
  const int first = run.first + job.parts.targetLeft, last = run.last + job.parts.targetLeft;
  const int64_t row = mapping.SourceRow(first, y);
  const int64_t column = mapping.SourceColumn(first, y);
  const int rowStep = mapping.Sine() < 0 ? -1 : 1;
  const int direction = mapping.Cosine() < 0 ? -1 : 1;

  // From the estimates at column 0 to the borders of a pixel that are crossed first.
  const double rowDistance = rowStep * (static_cast<double>(row) - mapping.RowEstimate(0, y)) + 0.5;
  int* columnBreaks =
      ListBreaks({rowDistance, std::fabs(mapping.Sine())}, first, last, last + 1, breaks,
                 [&](int x, int i) { return mapping.SourceRow(x, y) != row + rowStep * i; });
  const double columnDistance =
      direction * (mapping.ColumnEstimate(0, y) - static_cast<double>(column)) + first + 0.5;
  ListBreaks({columnDistance, 1 - std::fabs(mapping.Cosine())}, first, last, last, columnBreaks,
             [&](int x, int i) {
               return mapping.SourceColumn(x, y) != column + direction * (x - first - i);
             });
  return {first,  last,        row - job.parts.sourceTop, column - job.parts.sourceLeft,
          breaks, columnBreaks};
}

}  // namespace
}  // namespace rasterkit::kernels
#endif  // RASTERKIT_ROTATE_BIT_RUNS_ONCE

// Plain words, but compiled for each target: the newer ones shift and swap in single instructions.
HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

// kDirection is the sign of the cosine: which way the source column goes.
template <int kDirection>
HWY_INLINE void MovePixels(const WordReader& reader, ptrdiff_t offset, int column, int count,
                           BitWriter& writer) {
  for (; count > kWordPixels; count -= kWordPixels, column += kDirection * kWordPixels) {
    writer.Put(ReadPixels<kDirection>(reader, offset, column), kWordPixels);
  }
  writer.Put(ReadPixels<kDirection>(reader, offset, column), count);
}

template <int kDirection>
HWY_INLINE void MoveRuns(const Job& job, const RowRuns& runs, const WordReader& reader,
                         BitWriter& writer) {
  const auto stride = static_cast<ptrdiff_t>(job.source.stride);
  const ptrdiff_t rowStep = job.mapping.Sine() < 0 ? -stride : stride;
  const ptrdiff_t prefetch = kDirection * kPrefetchRows * stride;
  ptrdiff_t offset = static_cast<ptrdiff_t>(runs.row) * stride;
  auto column = static_cast<int>(runs.column);
  int x = runs.first;
  const int* rowBreak = runs.rowBreaks;
  for (const int* columnBreak = runs.columnBreaks;; ++columnBreak) {
    for (; *rowBreak <= *columnBreak; ++rowBreak) {
      const int count = *rowBreak - x;
      reader.Prefetch(offset + prefetch + (column >> 3));
      MovePixels<kDirection>(reader, offset, column, count, writer);
      offset += rowStep;
      column += kDirection * count;
      x += count;
    }
    const int count = *columnBreak - x;
    MovePixels<kDirection>(reader, offset, column, count, writer);
    x += count;
    if (x == runs.last) return;
    column += kDirection * (count - 1);
  }
}

void RotateRows(const Job& job, int* breaks, int firstRow, int lastRow) {
  const WordReader reader(job.source);
  const int width = job.target.width;
  for (int y = firstRow; y < lastRow; ++y) {
    const RotationMapping::Run run = job.mapping.InsideRun(y, job.parts, width);
    BitWriter writer(job.target.Row(y), job.target.stride);
    writer.PutSame(job.background, run.first);
    if (run.first < run.last) {
      const RowRuns runs = FindRuns(job, y, run, breaks);
      if (job.mapping.Cosine() > 0) {
        MoveRuns<1>(job, runs, reader, writer);
      } else {
        MoveRuns<-1>(job, runs, reader, writer);
      }
    }
    writer.PutSame(job.background, width - run.last);
    writer.PutSame(false, -width & 7);
  }
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(RotateRows);

}  // namespace

bool TakesLongRuns(const RotationMapping& mapping, int targetHeight) {
  const double sine = std::fabs(mapping.Sine());
  return HasFastSize(mapping, targetHeight) &&
         (sine == 0 || (sine >= kLeastSine && sine <= kMostSine));
}

void RotateBitRuns(const RotationMapping& mapping, const ConstPixelRows& source,
                   const PixelRows& target, bool background, int firstRow, int lastRow,
                   const RotationParts& parts) {
  // Breaks of both kinds are less than half as many as pixels; two ends.
  std::vector<int> breaks(static_cast<size_t>(target.width) / 2 + 4);
  HWY_DYNAMIC_DISPATCH(RotateRows)
  ({mapping, source, target, background, parts}, breaks.data(), firstRow, lastRow);
}

}  // namespace rasterkit::kernels
#endif  // HWY_ONCE
