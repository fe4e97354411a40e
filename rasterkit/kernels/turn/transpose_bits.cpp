#include <algorithm>
#include <cstring>

#include <rasterkit/kernels/turn/transpose_bits.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/turn/transpose_bits.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

// A block is 16 bytes (128 columns) of as many source rows as a vector has lanes. Its bytes are
// transposed, so that a vector holds one byte of each row; then the top bits of all lanes are a
// piece of a target row, and doubling the lanes brings the next bit to the top.

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

bool Transpose(const ConstPixelRows&, const PixelRows&, AxisTurn, int) {
  return false;
}

#else

using Bytes = hn::CappedTag<uint8_t, 32>;
using Block = hn::Full128<uint8_t>;
using Vector = hn::Vec<Bytes>;

constexpr int kRows = HWY_LANES(uint8_t) < 32 ? 16 : 32;  // of the source, in a block
constexpr int kBlockBytes = 16;
constexpr int kBlockColumns = kBlockBytes * 8;

// What shares cache lines: 64 bytes of source rows and of target rows.
constexpr int kTileBytes = 64;
constexpr int kTileRows = kTileBytes * 8;

// The source rows of a block in the order of the lanes.
struct BlockRows {
  const uint8_t* lane[kRows];
};

HWY_INLINE Vector LoadRows(const BlockRows& rows, int first) {
  if constexpr (kRows == 16) return hn::LoadU(Bytes(), rows.lane[first]);
#if HWY_MAX_BYTES >= 32
  else {
    return hn::Combine(Bytes(), hn::LoadU(Block(), rows.lane[first + 16]),
                       hn::LoadU(Block(), rows.lane[first]));
  }
#endif
}

// One of four equal stages of a transposition of 16 x 16 bytes in each 128-bit block: vectors i and
// i + 8 are interleaved byte by byte. After four times lane r of vector c is what was lane c of
// vector r.
HWY_INLINE void Interleave(const Vector* from, Vector* to) {
  const Bytes d;
  for (size_t i = 0; i < 8; ++i) {
    to[2 * i] = hn::InterleaveLower(d, from[i], from[i + 8]);
    to[2 * i + 1] = hn::InterleaveUpper(d, from[i], from[i + 8]);
  }
}

// Writes columns `first` to `last - 1` of the eight of a byte: the first in the rows' top bits.
// `target` is the place of column `first`, and there are `bytes` bytes of each target row.
HWY_INLINE void StoreColumns(Vector columns, uint8_t* target, ptrdiff_t step, int first, int last,
                             size_t bytes) {
  const hn::RebindToSigned<Bytes> d;
  for (int i = 0; i < first; ++i) columns = hn::Add(columns, columns);
  for (int i = first; i < last; ++i, target += step) {
    uint8_t bits[8];
    hn::StoreMaskBits(d, hn::Lt(hn::BitCast(d, columns), hn::Zero(d)), bits);
    if (bytes == kRows / 8) {
      std::memcpy(target, bits, kRows / 8);
    } else {
      std::memcpy(target, bits, bytes);
    }
    columns = hn::Add(columns, columns);
  }
}

// Columns `first` (0 to 7) to `last - 1` of the block. `target` is the byte of column `first` in
// its target row, `step` the way to the next one's.
HWY_INLINE void TransposeBlock(const BlockRows& rows, int first, int last, uint8_t* target,
                               ptrdiff_t step, size_t bytes) {
  Vector a[16], b[16];
  for (int i = 0; i < 16; ++i) a[i] = LoadRows(rows, i);
  Interleave(a, b);
  Interleave(b, a);
  Interleave(a, b);
  Interleave(b, a);
  StoreColumns(a[0], target, step, first, std::min(8, last), bytes);
  for (int i = 1; 8 * i < last; ++i) {
    StoreColumns(a[i], target + (8 * i - first) * step, step, 0, std::min(8, last - 8 * i), bytes);
  }
}

class Transposition {
 public:
  Transposition(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn, int skipped)
      : source_(source), target_(target), turn_(turn), skipped_(skipped) {}

  // Not the stride: rows may begin after the first column of their picture.
  int RowBytes() const { return (skipped_ + source_.width + 7) / 8; }

  // The part of the target that tiles of source columns and rows make.
  void DoTile(int firstByte, int firstRow) const {
    const int lastByte = std::min<int>(firstByte + kTileBytes, RowBytes());
    const int lastRow = std::min(firstRow + kTileRows, source_.height);
    for (int byte = firstByte; byte < lastByte; byte += kBlockBytes) {
      for (int x = firstRow; x < lastRow; x += kRows) DoBlock(byte, x);
    }
  }

 private:
  // `x` is the block's first target column.
  void DoBlock(int byte, int x) const {
    const int count = std::min(kRows, target_.width - x);
    BlockRows rows = RowsAt(byte, x, count);
    uint8_t copies[kRows][kBlockBytes];
    if (byte + kBlockBytes > RowBytes()) CopyRows(rows, byte, copies);
    const int first = byte == 0 ? skipped_ : 0;
    const int column = byte * 8 + first - skipped_;
    const auto stride = static_cast<ptrdiff_t>(target_.stride);
    const int y = turn_.mirrorY ? target_.height - 1 - column : column;
    TransposeBlock(rows, first, std::min(kBlockColumns, source_.width - column + first),
                   target_.Row(y) + x / 8, turn_.mirrorY ? -stride : stride,
                   static_cast<size_t>(count + 7) / 8);
  }

  // Lanes fill the bits of a byte from the lowest, pixels from the highest. Rows that do not exist
  // are white nothing: zeros.
  BlockRows RowsAt(int byte, int x, int count) const {
    static constexpr uint8_t kNothing[kBlockBytes] = {};
    BlockRows rows;
    for (int i = 0; i < kRows; ++i) {
      const int row = turn_.mirrorX ? target_.width - 1 - x - i : x + i;
      rows.lane[i ^ 7] = i < count ? source_.Row(row) + byte : kNothing;
    }
    return rows;
  }

  // For blocks that reach beyond the rows' ends.
  void CopyRows(BlockRows& rows, int byte, uint8_t (*copies)[kBlockBytes]) const {
    const auto bytes = static_cast<size_t>(RowBytes() - byte);
    for (int i = 0; i < kRows; ++i) {
      std::memset(copies[i], 0, kBlockBytes);
      std::memcpy(copies[i], rows.lane[i], bytes);
      rows.lane[i] = copies[i];
    }
  }

  const ConstPixelRows& source_;
  const PixelRows& target_;
  AxisTurn turn_;
  int skipped_;
};

bool Transpose(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn, int skipped) {
  const Transposition transposition(source, target, turn, skipped);
  for (int byte = 0; byte < transposition.RowBytes(); byte += kTileBytes) {
    for (int row = 0; row < source.height; row += kTileRows) transposition.DoTile(byte, row);
  }
  return true;
}

#endif

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Transpose);

}  // namespace

bool TransposeBits(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn,
                   int skipped) {
  return HWY_DYNAMIC_DISPATCH(Transpose)(source, target, turn, skipped);
}

}  // namespace rasterkit::kernels
#endif  // HWY_ONCE
