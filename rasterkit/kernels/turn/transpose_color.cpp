#include <algorithm>

#include <rasterkit/kernels/turn/transpose_color.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/turn/transpose_color.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

TransposedPart Transpose(const ConstPixelRows&, const PixelRows&, int, int, AxisTurn) {
  return {};
}
int MirrorRow(const uint8_t*, uint8_t*, int) {
  return 0;
}

#else

// Pixels as 32-bit lanes in blocks of four; two blocks where a vector holds them.
using Lanes = hn::CappedTag<uint32_t, 8>;
using Bytes = hn::Repartition<uint8_t, Lanes>;
using Longs = hn::Repartition<uint64_t, Lanes>;
using Block = hn::Full128<uint8_t>;
using Vector = hn::Vec<Lanes>;

constexpr int kPixels = HWY_LANES(uint32_t) < 8 ? 4 : 8;  // of a vector, in the target's direction

// Blocks of the target that share the source's cache lines while they are there.
constexpr int kBlockColumns = 128;
constexpr int kBlockRows = 32;

// From B G R B G R ... to B G R 0, from the first byte of 16 or from the fifth one.
alignas(16) constexpr uint8_t kSpread[2][16] = {
    {0, 1, 2, 128, 3, 4, 5, 128, 6, 7, 8, 128, 9, 10, 11, 128},
    {4, 5, 6, 128, 7, 8, 9, 128, 10, 11, 12, 128, 13, 14, 15, 128}};
alignas(16) constexpr uint8_t kSqueeze[16] = {0,  1,  2,  4,  5,   6,   8,   9,
                                              10, 12, 13, 14, 128, 128, 128, 128};

// Four bytes that a 24-bit load or store reaches beyond its pixels, twice that for two blocks.
template <int kTargetBits>
constexpr int StoredBytes() {
  return kTargetBits == 32 ? kPixels * 4 : (kPixels - 4) * 3 + 16;
}

HWY_INLINE Vector LoadBlocks(const uint8_t* first, const uint8_t* second) {
#if HWY_MAX_BYTES >= 32
  const Bytes d;
  return hn::BitCast(Lanes(),
                     hn::Combine(d, hn::LoadU(Block(), second), hn::LoadU(Block(), first)));
#else
  (void)second;
  return hn::BitCast(Lanes(), hn::LoadU(Block(), first));
#endif
}

// Stores a vector's pixels one after another; rubbish may follow.
template <int kTargetBits>
HWY_INLINE void StorePixels(Vector pixels, uint8_t* target) {
  const Bytes d;
  auto bytes = hn::BitCast(d, pixels);
  if constexpr (kTargetBits == 32) {
    hn::StoreU(bytes, d, target);
  } else {
    bytes = hn::TableLookupBytes(bytes, hn::LoadDup128(d, kSqueeze));
#if HWY_MAX_BYTES >= 32
    hn::StoreU(hn::LowerHalf(Block(), bytes), Block(), target);
    hn::StoreU(hn::UpperHalf(Block(), bytes), Block(), target + 12);
#else
    hn::StoreU(bytes, Block(), target);
#endif
  }
}

// Four source columns, from byte `from` of each row on, become parts of four target rows.
template <int kSourceBits, int kTargetBits>
void TransposeStrip(const uint8_t* from, ptrdiff_t step, int spread, uint8_t* const* to,
                    int columns) {
  const Lanes d;
  const Bytes d8;
  const Longs d64;
  const auto order = hn::LoadDup128(d8, kSpread[spread]);
  const auto load = [&](const uint8_t* row) {
    const Vector pixels = LoadBlocks(row, row + 4 * step);
    if constexpr (kSourceBits == 32) return pixels;
    return hn::BitCast(d, hn::TableLookupBytes(hn::BitCast(d8, pixels), order));
  };
  for (int x = 0; x < columns; x += kPixels, from += kPixels * step) {
    const Vector row0 = load(from);
    const Vector row1 = load(from + step);
    const Vector row2 = load(from + 2 * step);
    const Vector row3 = load(from + 3 * step);
    const auto low01 = hn::BitCast(d64, hn::InterleaveLower(d, row0, row1));
    const auto low23 = hn::BitCast(d64, hn::InterleaveLower(d, row2, row3));
    const auto high01 = hn::BitCast(d64, hn::InterleaveUpper(d, row0, row1));
    const auto high23 = hn::BitCast(d64, hn::InterleaveUpper(d, row2, row3));
    const size_t place = static_cast<size_t>(x) * (kTargetBits / 8);
    StorePixels<kTargetBits>(hn::BitCast(d, hn::InterleaveLower(d64, low01, low23)), to[0] + place);
    StorePixels<kTargetBits>(hn::BitCast(d, hn::InterleaveUpper(d64, low01, low23)), to[1] + place);
    StorePixels<kTargetBits>(hn::BitCast(d, hn::InterleaveLower(d64, high01, high23)),
                             to[2] + place);
    StorePixels<kTargetBits>(hn::BitCast(d, hn::InterleaveUpper(d64, high01, high23)),
                             to[3] + place);
  }
}

template <int kSourceBits, int kTargetBits>
TransposedPart TransposeAs(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn) {
  constexpr int kTargetBytes = kTargetBits / 8;
  // The last vector of a row must not reach into the next one.
  const int beyond =
      (StoredBytes<kTargetBits>() - kPixels * kTargetBytes + kTargetBytes - 1) / kTargetBytes;
  const int columns = std::max(0, (target.width - beyond) / kPixels * kPixels);
  const int rows = source.width < 6 ? 0 : target.height / 4 * 4;
  const ptrdiff_t step = static_cast<ptrdiff_t>(source.stride) * (turn.mirrorX ? -1 : 1);
  const uint8_t* firstRow = source.Row(turn.mirrorX ? source.height - 1 : 0);
  // Columns of the source from right to left: processors fetch the bytes after those that are read
  // in rising order, which would be too early here.
  const int groups = rows / 4, groupsOfBlock = kBlockRows / 4;
  for (int block = 0; block < groups; block += groupsOfBlock) {
    const int last = std::min(block + groupsOfBlock, groups);
    for (int left = 0; left < columns; left += kBlockColumns) {
      for (int group = block; group < last; ++group) {
        const int y = 4 * (turn.mirrorY ? group : groups - 1 - group);
        const int column = turn.mirrorY ? source.width - 4 - y : y;
        uint8_t* to[4];
        for (int i = 0; i < 4; ++i) {
          to[turn.mirrorY ? 3 - i : i] =
              target.Row(y + i) + static_cast<size_t>(left) * kTargetBytes;
        }
        // A 24-bit load takes 16 bytes for 12: at the row's end the four in front instead of those
        // behind.
        const int spread = kSourceBits == 24 && column + 6 > source.width ? 1 : 0;
        TransposeStrip<kSourceBits, kTargetBits>(
            firstRow + left * step + static_cast<ptrdiff_t>(column) * (kSourceBits / 8) -
                4 * spread,
            step, spread, to, std::min(kBlockColumns, columns - left));
      }
    }
  }
  return {columns, rows};
}

TransposedPart Transpose(const ConstPixelRows& source, const PixelRows& target, int sourceBits,
                         int targetBits, AxisTurn turn) {
  if (sourceBits == 24) return TransposeAs<24, 24>(source, target, turn);
  if (targetBits == 24) return TransposeAs<32, 24>(source, target, turn);
  return TransposeAs<32, 32>(source, target, turn);
}

// Five pixels after one byte that is not wanted, backward; one byte of rubbish follows.
alignas(16) constexpr uint8_t kBackward[16] = {13, 14, 15, 10, 11, 12, 7, 8,
                                               9,  4,  5,  6,  1,  2,  3, 128};

int MirrorRow(const uint8_t* source, uint8_t* target, int width) {
  const Block d;
  const auto order = hn::Load(d, kBackward);
  int x = 0;
  for (; x + 6 <= width; x += 5) {
    const auto pixels = hn::LoadU(d, source + 3 * (width - 5 - x) - 1);
    hn::StoreU(hn::TableLookupBytes(pixels, order), d, target + 3 * x);
  }
  return x;
}

#endif  // HWY_SCALAR

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {
HWY_EXPORT(Transpose);
HWY_EXPORT(MirrorRow);
}  // namespace

TransposedPart TransposeColor(const ConstPixelRows& source, const PixelRows& target, int sourceBits,
                              int targetBits, AxisTurn turn) {
  return HWY_DYNAMIC_DISPATCH(Transpose)(source, target, sourceBits, targetBits, turn);
}

int MirrorColorRow(const uint8_t* source, uint8_t* target, int width) {
  return HWY_DYNAMIC_DISPATCH(MirrorRow)(source, target, width);
}

}  // namespace rasterkit::kernels
#endif  // HWY_ONCE
