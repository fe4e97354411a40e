#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/bands/colors/common_number.h>
#include <rasterkit/bands/colors/placed_rows.h>
#include <rasterkit/bands/colors/sample_values.h>
#include <rasterkit/bands/combining.h>
#include <rasterkit/bands/layouts.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using namespace detail;

bool IsGrid(const PixelLayout& layout) {
  const bool isGray =
      layout.model == ColorModel::gray || layout.model == ColorModel::grayWhiteIsZero;
  return isGray && layout.alpha == AlphaKind::none && layout.extraBands == layout.bands - 1;
}

/// The pixels of the lower grid that may show the upper one.
struct Window {
  int left = 0, top = 0, width = 0, height = 0;
};

Window WindowOf(const Affine& toOver, Sides over, Sides sides) {
  const std::optional<Affine> back = toOver.Inverse();
  if (!back) throw RangeError("the position of the second picture cannot be inverted");
  const double right = over.width - 0.5, bottom = over.height - 0.5;
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

PixelLayout OfType(PixelLayout layout, NumberType type) {
  if (layout.type == type) return layout;
  layout.type = type;
  layout.bits = static_cast<int>(8 * BytesOf(type));
  return layout;
}

/// Numbers in rows of another type; the new type holds them exactly. Missing numbers stay missing.
class NumberRows {
 public:
  NumberRows(NumberType from, NumberType to, const std::optional<double>& noData)
      : from_(from), to_(to), noData_(noData) {}

  bool AreSame() const { return from_ == to_; }

  /// `source` and `target` are rows of `count` numbers.
  void Convert(const uint8_t* source, size_t count, uint8_t* target) const {
    if (AreSame()) {
      std::memcpy(target, source, count * BytesOf(from_));
      return;
    }
    std::vector<double> numbers(count);
    WithNumberType(from_, [&](auto zero) {
      using T = decltype(zero);
      const MissingNumber<T> missing(noData_);
      for (size_t i = 0; i < count; ++i) {
        const T number = LoadNumber<T>(source + i * sizeof(T));
        numbers[i] = missing.Is(number) ? *noData_ : ValueOf(number);
      }
    });
    WithNumberType(to_, [&](auto zero) {
      using T = decltype(zero);
      for (size_t i = 0; i < count; ++i) {
        const T number = NumberOf<T>(numbers[i]);
        std::memcpy(target + i * sizeof(T), &number, sizeof number);
      }
    });
  }

 private:
  const NumberType from_, to_;
  const std::optional<double> noData_;
};

/// The same for all rows.
Samples Converted(Samples source, NumberType type, const std::optional<double>& noData) {
  const NumberRows numbers(source.Layout().type, type, noData);
  if (numbers.AreSame()) return source;
  Samples target(OfType(source.Layout(), type), source.Width(), source.Height(),
                 source.Planes() > 1);
  target.resolution = source.resolution;
  const size_t count = source.Stride() / BytesOf(source.Layout().type);
  for (int plane = 0; plane < source.Planes(); ++plane) {
    for (int y = 0; y < source.Height(); ++y) {
      numbers.Convert(source.Row(y, plane), count, target.Row(y, plane));
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

/// Puts measured numbers of the upper grid, which lies pixel on pixel in a window, into rows of the
/// lower one.
class GridMerge {
 public:
  GridMerge(const GridCombination& combination, const Window& window, const Affine& toOver,
            Sides over)
      : combination_(combination), window_(window), toOver_(toOver), sides_(over) {}

  /// Row `overRow` of `over` lies on row `y` of the window. Returns how many of its numbers mean
  /// "not measured" in the lower grid. Without a lower grid it only counts.
  uint64_t MergeRow(int y, const Samples& over, int overRow, Samples* under, int underRow) const {
    return WithNumberType(over.Layout().type, [&](auto zero) {
      return MergeAs<decltype(zero)>(y, over, overRow, under, underRow);
    });
  }

 private:
  bool IsInside(int x, int y) const {
    const double column =
        std::nearbyint(toOver_.xPerColumn * x + (toOver_.xPerRow * y + toOver_.x));
    const double row = std::nearbyint(toOver_.yPerColumn * x + (toOver_.yPerRow * y + toOver_.y));
    return column >= 0 && row >= 0 && column < sides_.width && row < sides_.height;
  }

  template <class T>
  uint64_t MergeAs(int y, const Samples& over, int overRow, Samples* under, int underRow) const {
    const MissingNumber<T> missing(combination_.overNoData), below(combination_.noData);
    uint64_t clashes = 0;
    for (int x = 0; x < window_.width; ++x) {
      if (!IsInside(x, y)) continue;
      for (int band = 0; band < over.Layout().bands; ++band) {
        const T number = LoadNumber<T>(PlaceOf(over, x, overRow, band));
        const double value = ValueOf(number);
        if (missing.Is(number) || value != value) continue;
        if (below.Is(number)) ++clashes;
        if (under == nullptr) continue;
        uint8_t* const place =
            const_cast<uint8_t*>(PlaceOf(*under, window_.left + x, underRow, band));
        std::memcpy(place, &number, sizeof number);
      }
    }
    return clashes;
  }

  const GridCombination combination_;
  const Window window_;
  const Affine toOver_;
  const Sides sides_;
};

class Gridding : public BandWork {
 public:
  Gridding(const Samples& like, Sides size, const GridCombination& combination,
           const SecondKind& kind, SecondGrid second, const StageRun& run)
      : size_(size),
        combination_(combination),
        layout_(LayoutAfterGrid(like.Layout(), kind.layout, combination.filter)),
        numbers_(like.Layout().type, layout_.type, combination.noData),
        window_(WindowOf(combination.toOver, kind.sides, size)),
        toOver_(combination.toOver.After(ShiftOf(window_))),
        merge_(combination, window_, toOver_, kind.sides),
        kind_(kind),
        second_(std::move(second)),
        run_{run.threads, {}},
        like_(LikeOf(like, layout_.type)) {
    // With a wider type the bits are those of the type; the layout of the source else.
    if (IsSeen()) clashes_.assign(static_cast<size_t>(window_.height), kNotCounted);
  }

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return size_; }
  BandRect Needs(const BandRect& target) const override {
    return {0, target.top, size_.width, target.height};
  }

  void Make(const Band& source, Band& target, RowRange rows) const override {
    const auto& from = std::get<Samples>(source.pixels);
    auto& to = std::get<Samples>(target.pixels);
    const size_t count = from.Stride() / BytesOf(from.Layout().type);
    for (int plane = 0; plane < from.Planes(); ++plane) {
      for (int y = rows.first; y < rows.first + rows.count; ++y) {
        numbers_.Convert(from.Row(y - source.top, plane), count, to.Row(y - target.top, plane));
      }
    }
    const int first = std::max(rows.first, window_.top),
              last = std::min(rows.first + rows.count, window_.top + window_.height);
    if (!IsSeen() || first >= last) return;
    const Samples over = Over(first - window_.top, last - first);
    for (int y = first; y < last; ++y) {
      const int row = y - window_.top;
      Count(row, merge_.MergeRow(row, over, y - first, &to, y - target.top));
    }
  }

  void Finish(Changes& changes) override {
    for (const Loss& loss : changes_.losses) changes.losses.push_back(loss);
    for (const std::string& note : changes_.notes) changes.notes.push_back(note);
    const uint64_t clashes = CountAll();
    if (clashes == 0) return;
    changes.Lose(LossKind::noData, fmt::format("{} numbers of the second grid", clashes),
                 "they are the number that means no data in the first one");
  }

 private:
  static constexpr uint64_t kNotCounted = UINT64_MAX;

  static Affine ShiftOf(const Window& window) {
    Affine shift;
    shift.x = window.left;
    shift.y = window.top;
    return shift;
  }

  static Samples LikeOf(const Samples& like, NumberType type) {
    Samples made(OfType(like.Layout(), type), 1, 1, like.Planes() > 1);
    made.resolution = like.resolution;
    return made;
  }

  bool IsSeen() const { return window_.width > 0 && window_.height > 0; }

  /// Rows of the upper grid pixel on pixel, of the type of the result.
  Samples Over(int first, int count) const {
    std::call_once(ready_, [this] { Prepare(); });
    return Converted(std::get<Samples>(placed_->Rows(first, count)), layout_.type,
                     combination_.overNoData);
  }

  void Prepare() const {
    Samples second = second_(run_, changes_);
    const Sides sides{second.Width(), second.Height()};
    const PixelLayout after =
        LayoutAfterGrid(OfType(layout_, layout_.type), second.Layout(), combination_.filter);
    if (!(sides == kind_.sides) || after.type != layout_.type) {
      throw UnsupportedError("the second grid has other pixels than its header states");
    }
    Resampling how;
    how.filter = combination_.filter;
    how.fill.kind = Fill::Kind::edge;
    how.noData = combination_.overNoData;
    placed_ = std::make_unique<PlacedRows>(
        std::move(second), AffineStage(sides, toOver_, {window_.width, window_.height}, how), run_);
  }

  void Count(int row, uint64_t clashes) const {
    const std::lock_guard lock(mutex_);
    clashes_[static_cast<size_t>(row)] = clashes;
  }

  /// Rows that were never made count too: what is lost does not depend on later steps.
  uint64_t CountAll() const {
    uint64_t all = 0;
    for (size_t row = 0; row < clashes_.size(); ++row) {
      if (clashes_[row] == kNotCounted) {
        const int y = static_cast<int>(row);
        clashes_[row] =
            combination_.noData ? merge_.MergeRow(y, Over(y, 1), 0, nullptr, 0) : uint64_t{0};
      }
      all += clashes_[row];
    }
    return all;
  }

  const Sides size_;
  const GridCombination combination_;
  const PixelLayout layout_;
  const NumberRows numbers_;
  const Window window_;
  const Affine toOver_;
  const GridMerge merge_;
  const SecondKind kind_;
  const SecondGrid second_;
  const StageRun run_;
  const Pixels like_;
  /// The second grid is made ready with the first rows.
  mutable std::once_flag ready_;
  mutable Changes changes_;
  mutable std::unique_ptr<PlacedRows> placed_;
  mutable std::mutex mutex_;
  /// By rows of the window: a row may be made twice.
  mutable std::vector<uint64_t> clashes_;
};

class GridRows : public BandStage {
 public:
  GridRows(Sides source, GridCombination combination)
      : BandStage(source), combination_(std::move(combination)) {}

  RowRange Needs(RowRange target) const override { return target; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun& run) const override {
    const Samples& over = *combination_.over;
    auto second = [grid = combination_.over](const StageRun&, Changes&) { return grid->Clone(); };
    return StartGridding(like, Source(), combination_,
                         {over.Layout(), {over.Width(), over.Height()}}, second, run);
  }

 private:
  const GridCombination combination_;
};

}  // namespace

std::unique_ptr<BandWork> detail::StartGridding(const Pixels& like, Sides size,
                                                const GridCombination& combination,
                                                const SecondKind& kind, SecondGrid second,
                                                const StageRun& run) {
  const auto* const samples = std::get_if<Samples>(&like);
  if (samples == nullptr) throw UnsupportedError("only grids of numbers are combined as grids");
  return std::make_unique<Gridding>(*samples, size, combination, kind, std::move(second), run);
}

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
