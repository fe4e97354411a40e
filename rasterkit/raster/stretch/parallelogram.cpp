#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/raster/stretch/blit.h>
#include <rasterkit/raster/stretch/blit_axes.h>

namespace rasterkit {
namespace {

using namespace detail;

/// Corners beyond this would make products exceed 64 bits.
constexpr int64_t kFarthest = int64_t{1} << 27;

struct Corner {
  int64_t x, y;
};

bool IsFar(const Corner& corner) {
  return std::max(std::abs(corner.x), std::abs(corner.y)) > kFarthest;
}

struct Division {
  int64_t quotient, remainder;
};

/// floor(factor * part / whole) and the remainder, for 0 <= part < whole < 2^60, bit by bit, so
/// that nothing exceeds 64 bits.
Division MultiplyAndDivide(uint32_t factor, int64_t part, int64_t whole) {
  Division result{0, 0};
  for (int bit = 31; bit >= 0; --bit) {
    result.quotient *= 2;
    result.remainder = 2 * result.remainder + ((factor >> bit & 1) != 0 ? part : 0);
    for (; result.remainder >= whole; result.remainder -= whole) ++result.quotient;
  }
  return result;
}

int64_t FloorDivide(int64_t a, int64_t b) {
  const int64_t quotient = a / b;
  return quotient - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0);
}

/// Fixed-point positions that step by a constant along a row. Value and step are rounded, and
/// raised so that a position is never below the true one and less than 1 / `whole` above it.
/// Truncation is then exact, because a fraction of `whole` parts is at least one part below the
/// next integer.
constexpr int kFractionBits = 46;
constexpr int64_t kLongestFixedSide = int64_t{1} << 16;

/// floor(2^kFractionBits * (quotient + remainder / whole)).
int64_t ToFixed(const Division& position, int64_t whole) {
  constexpr int kHalfBits = kFractionBits / 2;
  const Division upper = MultiplyAndDivide(1u << kHalfBits, position.remainder, whole);
  const Division lower = MultiplyAndDivide(1u << kHalfBits, upper.remainder, whole);
  return (((position.quotient << kHalfBits) + upper.quotient) << kHalfBits) + lower.quotient;
}

/// Value and step have an error of less than one unit each; that of the step adds up per pixel.
bool StayExact(int64_t whole, int64_t pixels) {
  return whole < (int64_t{1} << kFractionBits) / (2 * pixels + 2);
}

/// Target columns from `first` to `last - 1`.
struct Run {
  int64_t first, last;
};

/// Position of the center of pixel (x, y) along one side of the parallelogram: (start + x * byX +
/// y * byY) / whole; at least 0 and below 1 inside.
struct Side {
  int64_t start, byX, byY;

  int64_t At(int64_t x, int64_t y) const { return start + x * byX + y * byY; }

  /// Part of the run whose centers lie inside.
  Run Inside(const Run& run, int64_t y, int64_t whole) const {
    const int64_t at0 = At(0, y);
    if (byX == 0) return at0 >= 0 && at0 < whole ? run : Run{0, 0};
    const int64_t step = std::abs(byX);
    const int64_t toLow = FloorDivide(at0, step), toHigh = FloorDivide(whole - 1 - at0, step);
    if (byX > 0) return {std::max(run.first, -toLow), std::min(run.last, toHigh + 1)};
    const int64_t first = -FloorDivide(whole - 1 - at0, step);
    return {std::max(run.first, first), std::min(run.last, toLow + 1)};
  }
};

/// Source position along one side, updated from pixel to pixel without a division.
class SidePosition {
 public:
  SidePosition(const Side& side, int64_t x, int64_t y, int64_t whole, uint32_t size)
      : forward_(side.byX >= 0),
        whole_(whole),
        step_(MultiplyAndDivide(size, std::abs(side.byX) % whole, whole)),
        at_(MultiplyAndDivide(size, side.At(x, y), whole)) {}

  int64_t Value() const { return at_.quotient; }

  void Next() {
    if (forward_) {
      at_.quotient += step_.quotient;
      at_.remainder += step_.remainder;
      if (at_.remainder < whole_) return;
      at_.remainder -= whole_;
      ++at_.quotient;
    } else {
      at_.quotient -= step_.quotient;
      at_.remainder -= step_.remainder;
      if (at_.remainder >= 0) return;
      at_.remainder += whole_;
      --at_.quotient;
    }
  }

 private:
  bool forward_;
  int64_t whole_;
  Division step_, at_;
};

/// Run of target pixels whose source pixels all exist; `column` and `row` are the fixed-point
/// source position of the first one.
struct FixedRun {
  int first, count;
  int64_t column, row;
  int64_t columnStep, rowStep;
};

/// Single pixels of a source in any format.
class PixelReader {
 public:
  explicit PixelReader(const Raster& source)
      : source_(source),
        bits_(StoredBitsPerPixel(source.Format())),
        table_(MakePixelTable(source.palette)) {}

  uint8_t Index(int x, int y) const {
    const uint8_t* row = source_.Row(y);
    if (bits_ == 8) return row[x];
    if (bits_ == 4) return x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 15;
    return row[x / 8] >> (7 - x % 8) & 1;
  }

  RGBArec Pixel(int x, int y) const {
    if (bits_ <= 8) return table_[Index(x, y)];
    RGBArec pixel;
    RowTo32(source_.Row(y) + static_cast<size_t>(x) * static_cast<size_t>(bits_ / 8),
            source_.Format(), 1, table_, &pixel);
    return pixel;
  }

 private:
  const Raster& source_;
  int bits_;
  const PixelTable table_;
};

class Parallelogram {
 public:
  /// Requires corners within the limit, and a `part` that is neither mirrored nor empty.
  Parallelogram(const std::array<Corner, 3>& corners, const Raster& source, const PixelRect& part)
      : source_(source), part_(part) {
    const auto [a, b, c] = corners;
    const int64_t area = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    const int64_t sign = area < 0 ? -1 : 1;
    whole_ = 2 * std::abs(area);
    across_ = MakeSide(a, sign * (c.y - a.y), -sign * (c.x - a.x));
    down_ = MakeSide(a, -sign * (b.y - a.y), sign * (b.x - a.x));
    if (whole_ == 0 || !IsPartNear()) return;
    columnStep_ = FixedStep(across_, Extent(part.left, part.right));
    rowStep_ = FixedStep(down_, Extent(part.top, part.bottom));
  }

  bool IsFlat() const { return whole_ == 0; }

  /// Tells whether fixed point is exact for rows of `width` pixels and all source pixels exist.
  bool HasFixedRuns(int width) const { return IsPartNear() && StayExact(whole_, width); }

  /// Run of row `y`, up to column `width`; requires fixed-point runs.
  FixedRun FixedRunOf(int y, int width) const {
    const Run run = InsideRun(y, width);
    if (run.first >= run.last) return {};
    const int64_t lift = int64_t{width} + 1;
    const auto position = [&](const Side& side, int low, int high) {
      const Division at = MultiplyAndDivide(Extent(low, high), side.At(run.first, y), whole_);
      return ToFixed({at.quotient + low, at.remainder}, whole_) + lift;
    };
    return {static_cast<int>(run.first),
            static_cast<int>(run.last - run.first),
            position(across_, part_.left, part_.right),
            position(down_, part_.top, part_.bottom),
            columnStep_,
            rowStep_};
  }

  /// Calls `put(x, sourceX, sourceY)` for the pixels of row `y` below `width` whose source exists,
  /// from left to right.
  template <class Put>
  void ForEachInRow(int y, int width, Put put) const {
    const Run run = InsideRun(y, width);
    if (run.first >= run.last) return;
    SidePosition across(across_, run.first, y, whole_, Extent(part_.left, part_.right));
    SidePosition down(down_, run.first, y, whole_, Extent(part_.top, part_.bottom));
    for (int64_t x = run.first; x < run.last; ++x, across.Next(), down.Next()) {
      const int64_t sourceX = part_.left + across.Value(), sourceY = part_.top + down.Value();
      if (sourceX < 0 || sourceX >= source_.Width() || sourceY < 0 || sourceY >= source_.Height()) {
        continue;
      }
      put(static_cast<int>(x), static_cast<int>(sourceX), static_cast<int>(sourceY));
    }
  }

 private:
  /// Centers lie half a pixel from the corner's coordinates: everything is doubled.
  static Side MakeSide(const Corner& origin, int64_t byX, int64_t byY) {
    return {(1 - 2 * origin.x) * byX + (1 - 2 * origin.y) * byY, 2 * byX, 2 * byY};
  }
  /// Tells whether the part lies inside a source whose positions fixed point can hold.
  bool IsPartNear() const {
    return part_.left >= 0 && part_.top >= 0 && part_.right <= source_.Width() &&
           part_.bottom <= source_.Height() &&
           std::max(source_.Width(), source_.Height()) <= kLongestFixedSide;
  }
  Run InsideRun(int y, int width) const {
    const Run run{0, std::min<int64_t>(width, kFarthest)};
    return down_.Inside(across_.Inside(run, y, whole_), y, whole_);
  }
  /// Drops the whole sides of a step: with such steps no run has two pixels.
  int64_t FixedStep(const Side& side, uint32_t size) const {
    const int64_t step =
        ToFixed(MultiplyAndDivide(size, std::abs(side.byX) % whole_, whole_), whole_);
    return side.byX < 0 ? -step : step;
  }
  static uint32_t Extent(int low, int high) { return static_cast<uint32_t>(int64_t{high} - low); }

  const Raster& source_;
  PixelRect part_;
  int64_t whole_ = 0;
  Side across_{}, down_{};
  int64_t columnStep_ = 0, rowStep_ = 0;
};

template <size_t kBytes>
const uint8_t* PixelAt(const Raster& source, int64_t column, int64_t row) {
  return source.Row(static_cast<int>(row >> kFractionBits)) +
         static_cast<size_t>(column >> kFractionBits) * kBytes;
}

/// Copies the run's pixels to `target`, `kMoved` bytes each. That may be one byte too many, which
/// the next pixel overwrites; the last pixel is copied exactly.
template <size_t kBytes, size_t kMoved>
void MovePixels(const Raster& source, const FixedRun& run, uint8_t* target) {
  int64_t column = run.column, row = run.row;
  for (int i = 1; i < run.count; ++i) {
    std::memcpy(target, PixelAt<kBytes>(source, column, row), kMoved);
    target += kBytes;
    column += run.columnStep;
    row += run.rowStep;
  }
  std::memcpy(target, PixelAt<kBytes>(source, column, row), kBytes);
}

/// Gathers the run's pixels; not for packed formats.
void MoveRun(const Raster& source, const FixedRun& run, uint8_t* target) {
  const int64_t lastRow = run.row + (run.count - 1) * run.rowStep;
  // Reading one byte too many is safe in all rows but the last.
  const bool isAboveLastRow =
      std::max(run.row, lastRow) >> kFractionBits < int64_t{source.Height()} - 1;
  switch (StoredBitsPerPixel(source.Format())) {
    case 8:
      return MovePixels<1, 1>(source, run, target);
    case 16:
      return MovePixels<2, 2>(source, run, target);
    case 24:
      return isAboveLastRow ? MovePixels<3, 4>(source, run, target)
                            : MovePixels<3, 3>(source, run, target);
    default:
      return MovePixels<4, 4>(source, run, target);
  }
}

/// Pixels whose bytes are the same in source and target.
bool MovesBytes(const Raster& target, const Raster& source) {
  if (source.Format() == pf8bit) return SameIndexes(target, source);
  return source.Format() == target.Format() &&
         (source.Format() == pf24bit || source.Format() == pf32bit);
}

void DrawBytes(Raster& target, const Parallelogram& shape, const Raster& source) {
  const auto bytes = static_cast<size_t>(StoredBitsPerPixel(source.Format()) / 8);
  for (int y = 0; y < target.Height(); ++y) {
    const FixedRun run = shape.FixedRunOf(y, target.Width());
    if (run.count > 0) MoveRun(source, run, target.Row(y) + static_cast<size_t>(run.first) * bytes);
  }
}

/// Runs of any but packed pixels, converted where they are drawn.
void DrawConverted(Raster& target, const Parallelogram& shape, const Raster& source) {
  PixelRule rule;
  rule.kind = PixelRule::Kind::copy;
  const auto targetRows = MakeTargetRows(target, rule);
  const PixelTable table = MakePixelTable(source.palette);
  const auto width = static_cast<size_t>(target.Width());
  std::vector<uint8_t> moved(width * 4);
  std::vector<RGBArec> pixels(width);
  for (int y = 0; y < target.Height(); ++y) {
    const FixedRun run = shape.FixedRunOf(y, target.Width());
    if (run.count == 0) continue;
    MoveRun(source, run, moved.data());
    RowTo32(moved.data(), source.Format(), run.count, table, pixels.data());
    targetRows->Write(y, run.first, run.count, pixels.data());
  }
}

void DrawIndexes(Raster& target, const Parallelogram& shape, const Raster& source) {
  const PixelReader reader(source);
  std::vector<uint8_t> indexes(static_cast<size_t>(target.Width()));
  for (int y = 0; y < std::min<int64_t>(target.Height(), kFarthest); ++y) {
    UnpackIndexes(target.Row(y), target.Format(), target.Width(), indexes.data());
    shape.ForEachInRow(y, target.Width(), [&](int x, int sourceX, int sourceY) {
      indexes[static_cast<size_t>(x)] = reader.Index(sourceX, sourceY);
    });
    PackIndexes(indexes.data(), target.Format(), target.Width(), target.Row(y));
  }
}

void DrawColors(Raster& target, const Parallelogram& shape, const Raster& source) {
  PixelRule rule;
  rule.kind = PixelRule::Kind::copy;
  const auto targetRows = MakeTargetRows(target, rule);
  const PixelReader reader(source);
  std::vector<RGBArec> pixels;
  for (int y = 0; y < std::min<int64_t>(target.Height(), kFarthest); ++y) {
    int first = 0;
    pixels.clear();
    shape.ForEachInRow(y, target.Width(), [&](int x, int sourceX, int sourceY) {
      if (pixels.empty()) first = x;
      pixels.push_back(reader.Pixel(sourceX, sourceY));
    });
    if (!pixels.empty()) {
      targetRows->Write(y, first, static_cast<int>(pixels.size()), pixels.data());
    }
  }
}

}  // namespace

void BlitParallelogram(Raster& target, const std::array<PixelPoint, 3>& corners,
                       const Raster& source, const PixelRect& part) {
  if (target.Width() == 0 || source.Width() == 0) return;
  std::array<Corner, 3> abc;
  for (size_t i = 0; i < 3; ++i) abc[i] = {corners[i].x, corners[i].y};
  auto& [a, b, c] = abc;
  // A mirrored part equals the plain part on the mirrored parallelogram.
  PixelRect plain = part;
  if (plain.right < plain.left) {
    std::swap(plain.left, plain.right);
    c = {c.x + b.x - a.x, c.y + b.y - a.y};
    std::swap(a, b);
  }
  if (plain.bottom < plain.top) {
    std::swap(plain.top, plain.bottom);
    b = {b.x + c.x - a.x, b.y + c.y - a.y};
    std::swap(a, c);
  }
  if (plain.left == plain.right || plain.top == plain.bottom) return;
  if (IsFar(a) || IsFar(b) || IsFar(c)) return;

  PixelRule rule;
  rule.kind = PixelRule::Kind::copy;
  if (a.y == b.y && a.x == c.x) {
    const PixelRect place{static_cast<int>(a.x), static_cast<int>(a.y), static_cast<int>(b.x),
                          static_cast<int>(c.y)};
    return BlitByAxes(target, MapAxes(target, place, source, plain, MirroredTie::floor), source,
                      rule);
  }
  const Parallelogram shape(abc, source, plain);
  if (shape.IsFlat()) return;
  if (shape.HasFixedRuns(target.Width()) && MovesBytes(target, source)) {
    DrawBytes(target, shape, source);
  } else if (SameIndexes(target, source)) {
    DrawIndexes(target, shape, source);
  } else if (shape.HasFixedRuns(target.Width()) && StoredBitsPerPixel(source.Format()) >= 8) {
    DrawConverted(target, shape, source);
  } else {
    DrawColors(target, shape, source);
  }
}

}  // namespace rasterkit
