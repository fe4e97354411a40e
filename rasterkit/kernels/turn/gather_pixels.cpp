#include <algorithm>
#include <cmath>
#include <cstring>

#include <rasterkit/kernels/rows/packed_pixels.h>
#include <rasterkit/kernels/turn/fast_rotation.h>
#include <rasterkit/kernels/turn/gather_pixels.h>

namespace rasterkit::kernels {
namespace {

// Coordinates step in fixed point with 40 fractional bits from the row's begin, lifted by one half,
// so that cutting rounds. The error stays below 2^-21 for pictures of at most kFastSize pixels per
// side: 2^-28 at the begin and 2^-41 for each of at most 2^18 pixels. Pixels that near to a half
// are decided by the exact rule.
constexpr int kFractionBits = 40;
constexpr int64_t kOne = int64_t{1} << kFractionBits;
constexpr int64_t kUnsure = kOne >> 20;

int64_t ToFixed(double value) {
  return std::llrint(std::ldexp(value, kFractionBits));
}

bool IsUnsure(int64_t fixed) {
  const int64_t fraction = fixed & (kOne - 1);
  return fraction < kUnsure || fraction > kOne - kUnsure;
}

/// Places in the source's part of the pixels of a row of the target's part, from left to right.
class RowPlaces {
 public:
  RowPlaces(const RotationMapping& mapping, const RotationParts& parts, bool isFast, int y,
            int first)
      : mapping_(mapping),
        parts_(parts),
        isFast_(isFast),
        y_(y + parts.targetTop),
        x_(first + parts.targetLeft) {
    if (!isFast) return;
    columnStep_ = ToFixed(mapping.Cosine());
    rowStep_ = ToFixed(mapping.Sine());
    column_ = ToFixed(mapping.ColumnEstimate(0, y_) + 0.5) + x_ * columnStep_;
    row_ = ToFixed(mapping.RowEstimate(0, y_) + 0.5) + x_ * rowStep_;
  }

  int64_t Column() const {
    return (isFast_ && !IsUnsure(column_) ? column_ >> kFractionBits
                                          : mapping_.SourceColumn(x_, y_)) -
           parts_.sourceLeft;
  }
  int64_t Row() const {
    return (isFast_ && !IsUnsure(row_) ? row_ >> kFractionBits : mapping_.SourceRow(x_, y_)) -
           parts_.sourceTop;
  }
  void Next() {
    ++x_;
    column_ += columnStep_;
    row_ += rowStep_;
  }

 private:
  const RotationMapping& mapping_;
  const RotationParts& parts_;
  const bool isFast_;
  const int y_;
  int x_;
  int64_t column_ = 0, row_ = 0, columnStep_ = 0, rowStep_ = 0;
};

template <size_t kBytes>
void MovePixel(const uint8_t* source, uint8_t* target, size_t) {
  std::memcpy(target, source, kBytes);
}
void MoveAnyPixel(const uint8_t* source, uint8_t* target, size_t bytes) {
  std::memcpy(target, source, bytes);
}

template <class Move>
void GatherRow(const ConstPixelRows& source, RowPlaces places, int count, size_t bytes,
               uint8_t* target, Move move) {
  for (int i = 0; i < count; ++i, target += bytes, places.Next()) {
    move(source.Row(static_cast<int>(places.Row())) + static_cast<size_t>(places.Column()) * bytes,
         target, bytes);
  }
}

template <class Move>
void Gather(const RotationMapping& mapping, const ConstPixelRows& source, const PixelRows& target,
            size_t bytes, const uint8_t* background, int firstRow, int lastRow,
            const RotationParts& parts, Move move) {
  const bool isFast = HasFastSize(mapping, mapping.TargetHeight());
  for (int y = firstRow; y < lastRow; ++y) {
    const RotationMapping::Run run = mapping.InsideRun(y, parts, target.width);
    uint8_t* row = target.Row(y);
    for (int x = 0; x < run.first; ++x) {
      move(background, row + static_cast<size_t>(x) * bytes, bytes);
    }
    GatherRow(source, RowPlaces(mapping, parts, isFast, y, run.first), run.last - run.first, bytes,
              row + static_cast<size_t>(run.first) * bytes, move);
    for (int x = run.last; x < target.width; ++x) {
      move(background, row + static_cast<size_t>(x) * bytes, bytes);
    }
  }
}

/// One pixel of any kind.
void CopyPixel(const uint8_t* source, size_t column, uint8_t* target, int x, int bits) {
  if (bits < 8) {
    uint8_t pixel;
    UnpackPixels(source, bits, static_cast<int>(column), 1, &pixel);
    const int shift = 8 - bits - x * bits % 8;
    uint8_t& byte = target[static_cast<size_t>(x) * static_cast<size_t>(bits) / 8];
    const auto mask = static_cast<uint8_t>(((1 << bits) - 1) << shift);
    byte = static_cast<uint8_t>((byte & ~mask) | pixel << shift);
    return;
  }
  const auto bytes = static_cast<size_t>(bits / 8);
  std::memcpy(target + static_cast<size_t>(x) * bytes, source + column * bytes, bytes);
}

}  // namespace

void GatherPixels(const RotationMapping& mapping, const ConstPixelRows& source,
                  const PixelRows& target, size_t bytesPerPixel, const uint8_t* background,
                  int firstRow, int lastRow, const RotationParts& parts) {
  const auto gather = [&](auto move) {
    Gather(mapping, source, target, bytesPerPixel, background, firstRow, lastRow, parts, move);
  };
  switch (bytesPerPixel) {
    case 1:
      return gather(MovePixel<1>);
    case 2:
      return gather(MovePixel<2>);
    case 3:
      return gather(MovePixel<3>);
    case 4:
      return gather(MovePixel<4>);
    case 6:
      return gather(MovePixel<6>);
    case 8:
      return gather(MovePixel<8>);
    case 12:
      return gather(MovePixel<12>);
    case 16:
      return gather(MovePixel<16>);
    default:
      return gather(MoveAnyPixel);
  }
}

void GatherEdges(const RotationMapping& mapping, const ConstPixelRows& source,
                 const PixelRows& target, int bitsPerPixel, int firstRow, int lastRow,
                 const RotationParts& parts) {
  const auto copy = [&](int x, int y) {
    const int wholeX = x + parts.targetLeft, wholeY = y + parts.targetTop;
    const int64_t column =
        std::clamp<int64_t>(mapping.SourceColumn(wholeX, wholeY), 0, mapping.SourceWidth() - 1);
    const int64_t row =
        std::clamp<int64_t>(mapping.SourceRow(wholeX, wholeY), 0, mapping.SourceHeight() - 1);
    CopyPixel(source.Row(static_cast<int>(row - parts.sourceTop)),
              static_cast<size_t>(column - parts.sourceLeft), target.Row(y), x, bitsPerPixel);
  };
  for (int y = firstRow; y < lastRow; ++y) {
    const RotationMapping::Run run = mapping.InsideRun(y, parts, target.width);
    for (int x = 0; x < run.first; ++x) copy(x, y);
    for (int x = run.last; x < target.width; ++x) copy(x, y);
  }
}

}  // namespace rasterkit::kernels
