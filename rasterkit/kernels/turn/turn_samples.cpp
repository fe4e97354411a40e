#include <algorithm>
#include <cstring>

#include <rasterkit/kernels/turn/turn_samples.h>

namespace rasterkit::kernels {
namespace {

// Square blocks keep the lines of both pictures in the first-level cache while rows become columns.
constexpr int kBlock = 16;

/// The bytes of a pixel; known to the compiler where the number is a usual one.
template <size_t kBytes>
struct FixedSize {
  static constexpr size_t Get() { return kBytes; }
};
struct AnySize {
  size_t bytes;
  size_t Get() const { return bytes; }
};

template <class Size>
void CopyStrided(const uint8_t* source, ptrdiff_t step, uint8_t* target, int count, Size size) {
  for (int i = 0; i < count; ++i, source += step, target += size.Get()) {
    std::memcpy(target, source, size.Get());
  }
}

template <class Size>
void TurnRows(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn, Size size) {
  const size_t bytes = size.Get();
  for (int y = 0; y < target.height; ++y) {
    const uint8_t* from = source.Row(turn.mirrorY ? target.height - 1 - y : y);
    if (turn.mirrorX) {
      CopyStrided(from + static_cast<size_t>(target.width - 1) * bytes,
                  -static_cast<ptrdiff_t>(bytes), target.Row(y), target.width, size);
    } else {
      std::memcpy(target.Row(y), from, static_cast<size_t>(target.width) * bytes);
    }
  }
}

template <class Size>
void TransposeBlock(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn, int left,
                    int top, Size size) {
  const auto stride = static_cast<ptrdiff_t>(source.stride);
  const int right = std::min(left + kBlock, target.width);
  const int bottom = std::min(top + kBlock, target.height);
  const int firstRow = turn.mirrorX ? target.width - 1 - left : left;
  for (int y = top; y < bottom; ++y) {
    const int column = turn.mirrorY ? target.height - 1 - y : y;
    CopyStrided(source.Row(firstRow) + static_cast<size_t>(column) * size.Get(),
                turn.mirrorX ? -stride : stride,
                target.Row(y) + static_cast<size_t>(left) * size.Get(), right - left, size);
  }
}

template <class Size>
void TurnWhole(const ConstPixelRows& source, const PixelRows& target, AxisTurn turn, Size size) {
  if (target.width <= 0 || target.height <= 0) return;
  if (!turn.transpose) return TurnRows(source, target, turn, size);
  for (int y = 0; y < target.height; y += kBlock) {
    for (int x = 0; x < target.width; x += kBlock) TransposeBlock(source, target, turn, x, y, size);
  }
}

}  // namespace

void TurnSamples(const ConstPixelRows& source, const PixelRows& target, int bitsPerPixel,
                 AxisTurn turn, int skipped) {
  if (bitsPerPixel <= 32) return TurnPixels(source, target, bitsPerPixel, turn, skipped);
  switch (bitsPerPixel) {
    case 48:
      TurnWhole(source, target, turn, FixedSize<6>());
      break;
    case 64:
      TurnWhole(source, target, turn, FixedSize<8>());
      break;
    case 96:
      TurnWhole(source, target, turn, FixedSize<12>());
      break;
    case 128:
      TurnWhole(source, target, turn, FixedSize<16>());
      break;
    default:
      TurnWhole(source, target, turn, AnySize{static_cast<size_t>(bitsPerPixel / 8)});
      break;
  }
  for (int y = 0; y < target.height; ++y) ClearPadding(target, y, bitsPerPixel);
}

}  // namespace rasterkit::kernels
