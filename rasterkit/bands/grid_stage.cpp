#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/bands/colors/common_number.h>
#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/bands/layouts.h>
#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using namespace detail;

/// Parts of the progress after which the upper grid is placed.
constexpr double kPlaced = 0.5;

bool IsGrid(const PixelLayout& layout) {
  const bool isGray =
      layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
  return isGray && layout.alpha == AlphaKind::none && layout.extraBands == layout.bands - 1;
}

/// The pixels of the lower grid that may show the upper one.
struct Window {
  int left = 0, top = 0, width = 0, height = 0;
};

Window WindowOf(const GridCombination& combination, Sides sides) {
  const std::optional<Affine> back = combination.toOver.Inverse();
  if (!back) throw RangeError("the position of the second picture cannot be inverted");
  const double right = combination.over->Width() - 0.5, bottom = combination.over->Height() - 0.5;
  double low[] = {INFINITY, INFINITY}, high[] = {-INFINITY, -INFINITY};
  for (const double column : {-0.5, right}) {
    for (const double row : {-0.5, bottom}) {
      const MapPoint place = back->At(column, row);
      low[0] = std::min(low[0], place.x), high[0] = std::max(high[0], place.x);
      low[1] = std::min(low[1], place.y), high[1] = std::max(high[1], place.y);
    }
  }
  // One pixel more on each side, against rounding.
  const auto first = [](double place, int size) {
    return static_cast<int>(std::clamp(std::floor(place) - 1, 0.0, static_cast<double>(size)));
  };
  const auto last = [](double place, int size) {
    return static_cast<int>(std::clamp(std::ceil(place) + 2, 0.0, static_cast<double>(size)));
  };
  Window window;
  window.left = first(low[0], sides.width);
  window.top = first(low[1], sides.height);
  window.width = last(high[0], sides.width) - window.left;
  window.height = last(high[1], sides.height) - window.top;
  return window;
}

/// Numbers of another type; the new type holds them exactly. Missing numbers stay missing.
Samples Converted(Samples source, NumberType type, const std::optional<double>& noData) {
  const NumberType from = source.Layout().type;
  if (from == type) return source;
  PixelLayout layout = source.Layout();
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  Samples target(layout, source.Width(), source.Height(), source.Planes() > 1);
  target.resolution = source.resolution;
  const size_t count = source.Stride() / BytesOf(from);
  std::vector<double> numbers(count);
  for (int plane = 0; plane < source.Planes(); ++plane) {
    for (int y = 0; y < source.Height(); ++y) {
      WithNumberType(from, [&](auto zero) {
        using T = decltype(zero);
        const MissingNumber<T> missing(noData);
        for (size_t i = 0; i < count; ++i) {
          const T number = LoadNumber<T>(source.Row(y, plane) + i * sizeof(T));
          numbers[i] = missing.Is(number) ? *noData : ValueOf(number);
        }
      });
      WithNumberType(type, [&](auto zero) {
        using T = decltype(zero);
        for (size_t i = 0; i < count; ++i) {
          const T number = NumberOf<T>(numbers[i]);
          std::memcpy(target.Row(y, plane) + i * sizeof(T), &number, sizeof number);
        }
      });
    }
  }
  return target;
}

const uint8_t* PlaceOf(const Samples& samples, int x, int y, int band) {
  const size_t size = BytesOf(samples.Layout().type);
  const bool inPlanes = samples.Planes() > 1;
  const uint8_t* const row = inPlanes ? samples.Row(y, band) : samples.Row(y);
  return row + static_cast<size_t>(x) * samples.PixelBytes() +
         (inPlanes ? 0 : static_cast<size_t>(band) * size);
}

/// Puts measured numbers of the upper grid, which lies pixel on pixel in a window, into the lower
/// one.
class GridMerge {
 public:
  GridMerge(const GridCombination& combination, const Window& window, const Affine& toOver,
            const Samples& over, Samples& under)
      : combination_(combination), window_(window), toOver_(toOver), over_(over), under_(under) {}

  /// A row of the window.
  void MergeRow(int y) {
    const NumberType type = under_.Layout().type;
    WithNumberType(type, [&](auto zero) { MergeAs<decltype(zero)>(y); });
  }
  uint64_t Clashes() const { return clashes_; }

 private:
  bool IsInside(int x, int y) const {
    const double column =
        std::nearbyint(toOver_.xPerColumn * x + (toOver_.xPerRow * y + toOver_.x));
    const double row = std::nearbyint(toOver_.yPerColumn * x + (toOver_.yPerRow * y + toOver_.y));
    return column >= 0 && row >= 0 && column < combination_.over->Width() &&
           row < combination_.over->Height();
  }

  template <class T>
  void MergeAs(int y) {
    const MissingNumber<T> missing(combination_.overNoData), below(combination_.noData);
    uint64_t clashes = 0;
    for (int x = 0; x < window_.width; ++x) {
      if (!IsInside(x, y)) continue;
      for (int band = 0; band < under_.Layout().bands; ++band) {
        const T number = LoadNumber<T>(PlaceOf(over_, x, y, band));
        const double value = ValueOf(number);
        if (missing.Is(number) || value != value) continue;
        if (below.Is(number)) ++clashes;
        uint8_t* const place =
            const_cast<uint8_t*>(PlaceOf(under_, window_.left + x, window_.top + y, band));
        std::memcpy(place, &number, sizeof number);
      }
    }
    clashes_ += clashes;
  }

  const GridCombination& combination_;
  const Window window_;
  const Affine toOver_;
  const Samples& over_;
  Samples& under_;
  std::atomic<uint64_t> clashes_ = 0;
};

class GridRows : public Stage {
 public:
  GridRows(Sides source, GridCombination combination)
      : source_(source), combination_(std::move(combination)) {}

  RowRange Needs(RowRange target) const override { return target; }

  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    RequireSides(source, source_);
    auto* const samples = std::get_if<Samples>(&source);
    if (samples == nullptr) throw UnsupportedError("only grids of numbers are combined as grids");
    const PixelLayout layout =
        LayoutAfterGrid(samples->Layout(), combination_.over->Layout(), combination_.filter);
    Samples under = Converted(std::move(*samples), layout.type, combination_.noData);
    const Window window = WindowOf(combination_, source_);
    if (window.width > 0 && window.height > 0) Merge(window, under, run, changes);
    if (run.progress) run.progress(1);
    return under;
  }

 private:
  void Merge(const Window& window, Samples& under, const StageRun& run, Changes& changes) const {
    Affine shift;
    shift.x = window.left;
    shift.y = window.top;
    const Affine toOver = combination_.toOver.After(shift);
    const Samples over = Placed(window, toOver, under.Layout().type, run);
    GridMerge merge(combination_, window, toOver, over, under);
    ForRows(window.height, PieceOf(window.height, over.Stride()), run, {kPlaced, 1},
            [&](int first, int last) {
              for (int y = first; y < last; ++y) merge.MergeRow(y);
            });
    if (merge.Clashes() == 0) return;
    changes.Lose(LossKind::noData, fmt::format("{} numbers of the second grid", merge.Clashes()),
                 "they are the number that means no data in the first one");
  }

  /// The upper grid pixel on pixel, of the type of the result.
  Samples Placed(const Window& window, const Affine& toOver, NumberType type,
                 const StageRun& run) const {
    const Samples& over = *combination_.over;
    Resampling how;
    how.filter = combination_.filter;
    how.fill.kind = Fill::Kind::edge;
    how.noData = combination_.overNoData;
    StageRun part = run;
    if (run.progress) part.progress = [&](double done) { run.progress(done * kPlaced); };
    Changes unused;
    Pixels placed =
        AffineStage({over.Width(), over.Height()}, toOver, {window.width, window.height}, how)
            ->Make(over.Clone(), part, unused);
    return Converted(std::get<Samples>(std::move(placed)), type, combination_.overNoData);
  }

  const Sides source_;
  const GridCombination combination_;
};

}  // namespace

PixelLayout LayoutAfterGrid(const PixelLayout& layout, const PixelLayout& over, Filter filter) {
  const bool areGrids = IsGrid(layout) && IsGrid(over) && layout.model == over.model;
  if (!areGrids) {
    throw UnsupportedError("only grids of numbers are combined as grids, not colors");
  }
  if (layout.bands != over.bands) {
    throw UnsupportedError(
        fmt::format("a grid of {} bands cannot lie over one of {}", over.bands, layout.bands));
  }
  const std::optional<NumberType> type = CommonNumberType(layout.type, over.type);
  if (!type) {
    throw UnsupportedError("no number type holds the numbers of both grids exactly");
  }
  const bool isWide = over.type == NumberType::uint64 || over.type == NumberType::int64;
  if (isWide && (filter == Filter::linear || filter == Filter::area)) {
    throw UnsupportedError("64-bit numbers are not averaged; only the nearest pixels can be taken");
  }
  PixelLayout result = layout;
  if (layout.type == over.type && layout.bits >= over.bits) return result;
  result.type = *type;
  result.bits = static_cast<int>(8 * BytesOf(*type));
  return result;
}

std::unique_ptr<Stage> GridStage(Sides source, const GridCombination& combination) {
  if (!combination.over) throw RangeError("there is no picture to combine with");
  return std::make_unique<GridRows>(source, combination);
}

}  // namespace rasterkit
