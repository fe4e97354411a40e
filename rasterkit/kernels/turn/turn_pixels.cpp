#include <algorithm>
#include <cstring>
#include <vector>

#include <rasterkit/kernels/rows/move_bits.h>
#include <rasterkit/kernels/rows/packed_pixels.h>
#include <rasterkit/kernels/rows/reverse_row.h>
#include <rasterkit/kernels/turn/transpose_bits.h>
#include <rasterkit/kernels/turn/transpose_color.h>
#include <rasterkit/kernels/turn/turn_pixels.h>

namespace rasterkit::kernels {
namespace {

// Square blocks keep the lines of both pictures in the first-level cache while rows become columns.
constexpr int kBlock = 32;

template <int kSourceBytes, int kTargetBytes>
void CopyPixel(const uint8_t* source, uint8_t* target) {
  static_assert(kTargetBytes <= kSourceBytes);
  std::memcpy(target, source, kTargetBytes);
}

template <int kSourceBytes, int kTargetBytes>
void CopyStrided(const uint8_t* source, ptrdiff_t step, uint8_t* target, int count) {
  for (int i = 0; i < count; ++i, source += step, target += kTargetBytes) {
    CopyPixel<kSourceBytes, kTargetBytes>(source, target);
  }
}

template <int kSourceBytes, int kTargetBytes>
void MirrorRow(const uint8_t* source, uint8_t* target, int width) {
  if constexpr (kSourceBytes == kTargetBytes && kSourceBytes != 3) {
    // The copy is in the cache when it is reversed.
    std::memcpy(target, source, static_cast<size_t>(width) * kTargetBytes);
    ReverseBytePixels(target, static_cast<size_t>(width), kTargetBytes * 8);
    return;
  }
  int done = 0;
  if constexpr (kSourceBytes == 3) done = MirrorColorRow(source, target, width);
  CopyStrided<kSourceBytes, kTargetBytes>(source + ptrdiff_t{width - 1 - done} * kSourceBytes,
                                          -kSourceBytes, target + ptrdiff_t{done} * kTargetBytes,
                                          width - done);
}

template <int kSourceBytes, int kTargetBytes>
void TurnRows(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn) {
  for (int y = 0; y < target.height; ++y) {
    const uint8_t* from = source.Row(turn.mirrorY ? target.height - 1 - y : y);
    if (turn.mirrorX) {
      MirrorRow<kSourceBytes, kTargetBytes>(from, target.Row(y), target.width);
    } else if (kSourceBytes == kTargetBytes) {
      std::memcpy(target.Row(y), from, size_t(target.width) * kTargetBytes);
    } else {
      CopyStrided<kSourceBytes, kTargetBytes>(from, kSourceBytes, target.Row(y), target.width);
    }
  }
}

struct Area {
  int left, top, right, bottom;
};

template <int kSourceBytes, int kTargetBytes>
void TransposeBlock(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn,
                    Area area) {
  const auto stride = static_cast<ptrdiff_t>(source.stride);
  const int firstRow = turn.mirrorX ? target.width - 1 - area.left : area.left;
  for (int y = area.top; y < area.bottom; ++y) {
    const int column = turn.mirrorY ? target.height - 1 - y : y;
    CopyStrided<kSourceBytes, kTargetBytes>(
        source.Row(firstRow) + size_t(column) * kSourceBytes, turn.mirrorX ? -stride : stride,
        target.Row(y) + size_t(area.left) * kTargetBytes, area.right - area.left);
  }
}

template <int kSourceBytes, int kTargetBytes>
void TransposeArea(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn,
                   Area area) {
  for (int y = area.top; y < area.bottom; y += kBlock) {
    for (int x = area.left; x < area.right; x += kBlock) {
      TransposeBlock<kSourceBytes, kTargetBytes>(
          source, target, turn,
          {x, y, std::min(x + kBlock, area.right), std::min(y + kBlock, area.bottom)});
    }
  }
}

template <int kSourceBytes, int kTargetBytes>
void TurnBytePixels(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn) {
  if (source.width == 0 || source.height == 0) return;
  if (!turn.transpose) return TurnRows<kSourceBytes, kTargetBytes>(source, target, turn);
  TransposedPart done;
  if constexpr (kTargetBytes >= 3) {
    done = TransposeColor(source, target, kSourceBytes * 8, kTargetBytes * 8, turn);
  }
  TransposeArea<kSourceBytes, kTargetBytes>(source, target, turn,
                                            {done.columns, 0, target.width, done.rows});
  TransposeArea<kSourceBytes, kTargetBytes>(source, target, turn,
                                            {0, done.rows, target.width, target.height});
}

// Packed pixels that stand in some bytes: bits of other pixels in front of them, and behind.
struct PackedRow {
  PackedRow(int width, int bits, int skipped)
      : before(skipped * bits),
        bytes((static_cast<size_t>(width) * static_cast<size_t>(bits) +
               static_cast<size_t>(before) + 7) /
              8),
        after(static_cast<int>(bytes * 8 - static_cast<size_t>(width) * static_cast<size_t>(bits)) -
              before) {}

  int before;
  size_t bytes;
  int after;
};

void TurnPackedRows(const ConstPixelRows& source, const PixelRows& target, int bits, AxisTurn turn,
                    int skipped) {
  const PackedRow packed(target.width, bits, skipped);
  const size_t count = static_cast<size_t>(target.width) * static_cast<size_t>(bits);
  if (count == 0) return;
  std::vector<uint8_t> turned(packed.bytes);
  for (int y = 0; y < target.height; ++y) {
    const uint8_t* from = source.Row(turn.mirrorY ? target.height - 1 - y : y);
    uint8_t* row = target.Row(y);
    if (turn.mirrorX) {
      // Turned around, the row begins with the bits behind its last pixel.
      ReversePackedBytes(from, packed.bytes, bits, turned.data());
      MoveBits(turned.data(), static_cast<size_t>(packed.after), row, 0, count);
    } else {
      MoveBits(from, static_cast<size_t>(packed.before), row, 0, count);
    }
    if (count % 8 != 0) row[count / 8] &= static_cast<uint8_t>(0xFF00u >> (count % 8));
  }
}

// Blocks begin at whole bytes of the target's rows, so that each byte is written once.
void TransposePackedBlock(const ConstPixelRows& source, const PixelRows& target, int bits,
                          AxisTurn turn, int skipped, int x0, int y0) {
  const int columns = std::min(kBlock, target.width - x0);
  const int rows = std::min(kBlock, target.height - y0);
  const int firstColumn = skipped + (turn.mirrorY ? target.height - y0 - rows : y0);
  uint8_t block[kBlock][kBlock];
  for (int i = 0; i < columns; ++i) {
    UnpackPixels(source.Row(turn.mirrorX ? target.width - 1 - x0 - i : x0 + i), bits, firstColumn,
                 rows, block[i]);
  }
  uint8_t line[kBlock];
  for (int j = 0; j < rows; ++j) {
    for (int i = 0; i < columns; ++i) line[i] = block[i][turn.mirrorY ? rows - 1 - j : j];
    PackPixels(line, bits, x0, columns, target.Row(y0 + j));
  }
}

void TurnPackedPixels(const ConstPixelRows& source, const PixelRows& target, int bits,
                      AxisTurn turn, int skipped) {
  if (!turn.transpose) return TurnPackedRows(source, target, bits, turn, skipped);
  if (bits == 1 && TransposeBits(source, target, turn, skipped)) return;
  for (int y = 0; y < target.height; y += kBlock) {
    for (int x = 0; x < target.width; x += kBlock) {
      TransposePackedBlock(source, target, bits, turn, skipped, x, y);
    }
  }
}

void ClearAllPadding(const PixelRows& rows, int bits) {
  for (int y = 0; y < rows.height; ++y) ClearPadding(rows, y, bits);
}

}  // namespace

void TurnPixels(const ConstPixelRows& source, const PixelRows& target, int bitsPerPixel,
                AxisTurn turn, int skipped) {
  switch (bitsPerPixel) {
    case 8:
      TurnBytePixels<1, 1>(source, target, turn);
      break;
    case 16:
      TurnBytePixels<2, 2>(source, target, turn);
      break;
    case 24:
      TurnBytePixels<3, 3>(source, target, turn);
      break;
    case 32:
      TurnBytePixels<4, 4>(source, target, turn);
      break;
    default:
      TurnPackedPixels(source, target, bitsPerPixel, turn, skipped);
      break;
  }
  ClearAllPadding(target, bitsPerPixel);
}

void TurnPixels32To24(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn) {
  TurnBytePixels<4, 3>(source, target, turn);
  ClearAllPadding(target, 24);
}

}  // namespace rasterkit::kernels
