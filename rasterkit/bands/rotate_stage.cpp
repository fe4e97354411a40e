#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include <rasterkit/bands/affine_rows.h>
#include <rasterkit/bands/linear_rows.h>
#include <rasterkit/bands/prepared_pixels.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/kernels/turn/gather_pixels.h>
#include <rasterkit/kernels/turn/rotate_pixels.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using detail::AveragedForm;
using detail::ConstPixelGrid;
using detail::PixelGrid;
using kernels::RotationParts;

/// Rows and columns of a tile whose source is turned or prepared first. Where rows fall slowly,
/// more columns do not need much more of the source.
constexpr int kTileRows = 128, kTileColumns = 512, kLongTileColumns = 4096;
constexpr double kSlowFall = 1.0 / 64;

/// A picture taken from another one along an affine.
struct TurnTask {
  Sides source, target;
  Affine toOld;
  /// The rotation that it is; 0 for any other affine.
  float degrees = 0;
  Resampling how;

  bool IsClamped() const { return how.fill.kind == Fill::Kind::edge; }
};

std::optional<kernels::RotationMapping> MappingOf(const TurnTask& task) {
  if (task.degrees == 0) return std::nullopt;
  return kernels::RotationMapping(kernels::SineCosineOfDegrees(task.degrees), task.source.width,
                                  task.source.height, task.target.width, task.target.height);
}

/// Numbers that the places of some pixels lie between.
struct Bounds {
  double low = std::numeric_limits<double>::infinity(), high = -low;

  void Include(double place) {
    low = std::min(low, place);
    high = std::max(high, place);
  }
};

/// Positions 0 to `size - 1` from `before` in front of the bounds to `behind` after them.
RowRange PositionsIn(const Bounds& bounds, double before, double behind, int size, bool isClamped) {
  const double last = size - 1.0;
  const double low = std::floor(bounds.low - before), high = std::ceil(bounds.high + behind);
  // Sums of numbers beyond all sizes may be undefined.
  if (!(low <= high)) return {0, size};
  if (!isClamped && (high < 0 || low > last)) return {};
  const auto first = static_cast<int>(std::clamp(low, 0.0, last));
  return {first, static_cast<int>(std::clamp(high, 0.0, last)) - first + 1};
}

/// Takes pixels along an affine, from the source or from the source that was turned by quarters
/// first.
class TakenWork : public BandWork {
 public:
  TakenWork(const Pixels& like, const TurnTask& task, std::unique_ptr<BandWork> quarters)
      : task_(task),
        mapping_(MappingOf(task)),
        quarters_(std::move(quarters)),
        sourceLike_(NewPixels(quarters_ ? quarters_->Like() : like, 1, 1)),
        form_(detail::PreparedPixels::ForTurn(sourceLike_, task.how)),
        tileColumns_(std::abs(task.toOld.yPerColumn) < kSlowFall ? kLongTileColumns
                                                                 : kTileColumns) {}

  const Pixels& Like() const override { return form_.Like(); }
  Sides Size() const override { return task_.target; }
  bool MakesParts() const override { return true; }

  BandRect Needs(const BandRect& target) const override {
    const BandRect needs = TurnedNeeds(target);
    return quarters_ && needs.width > 0 ? quarters_->Needs(needs) : needs;
  }

  void Make(const Band& source, Band& target, RowRange rows) const override {
    if (!quarters_ && !form_.Changes()) return Take(source, target, rows);
    Tiles tiles{TurnedNeeds({target.left, rows.first, WidthOf(target.pixels), rows.count})};
    const int right = target.left + WidthOf(target.pixels);
    for (int top = rows.first; top < rows.first + rows.count; top += kTileRows) {
      for (int left = target.left; left < right; left += tileColumns_) {
        MakeTile(source, target,
                 {left, top, std::min(tileColumns_, right - left),
                  std::min(kTileRows, rows.first + rows.count - top)},
                 tiles);
      }
    }
  }

  int RowsOfPiece() const override {
    return quarters_ || form_.Changes() ? kTileRows : kernels::kRotationStripRows;
  }

 private:
  /// The part of the turned source that a part of the result needs.
  BandRect TurnedNeeds(const BandRect& target) const {
    if (target.width == 0 || target.height == 0) return {};
    Bounds columns, rows;
    for (const int x : {target.left, target.left + target.width - 1}) {
      for (const int y : {target.top, target.top + target.height - 1}) {
        const MapPoint place = PlaceOf(x, y);
        columns.Include(place.x);
        rows.Include(place.y);
      }
    }
    // Linear interpolation takes the pixels on both sides. The kernels are fast where two more rows
    // follow.
    constexpr double kAround = 1, kMoreRows = 3;
    const RowRange across =
        PositionsIn(columns, kAround, kAround, task_.source.width, task_.IsClamped());
    const RowRange down =
        PositionsIn(rows, kAround, kMoreRows, task_.source.height, task_.IsClamped());
    if (across.count == 0 || down.count == 0) return {};
    return {across.first, down.first, across.count, down.count};
  }

  MapPoint PlaceOf(int x, int y) const {
    if (mapping_) return {mapping_->ColumnEstimate(x, y), mapping_->RowEstimate(x, y)};
    return task_.toOld.At(x, y);
  }

  /// Pixels that tiles share, so that not each of them gets memory anew.
  struct Tiles {
    /// The part of the turned source that all tiles together need.
    BandRect region;
    Band turned{Raster()}, made{Raster()};
    /// Where nothing of the source shows.
    Band nothing{Raster()};
  };

  static void Place(Band& band, const Pixels& like, const BandRect& rect) {
    if (band.Rect().width != rect.width || band.Rect().height != rect.height) {
      band.pixels = NewPixels(like, rect.width, rect.height);
    }
    band.left = rect.left;
    band.top = rect.top;
  }

  void MakeTile(const Band& source, Band& target, const BandRect& tile, Tiles& tiles) const {
    Place(tiles.made, form_.Like(), tile);
    Take(Prepared(source, tile, tiles), tiles.made, {tile.top, tile.height});
    CopyPart(tiles.made.pixels, {0, 0, tile.width, tile.height}, target.pixels,
             tile.left - target.left, tile.top - target.top);
  }

  /// What a tile needs; as large as that of most tiles where the region has room.
  BandRect NeedsOfTile(const BandRect& tile, const BandRect& region) const {
    constexpr int kRounding = 8;
    const double sine = std::abs(task_.toOld.yPerColumn), cosine = std::abs(task_.toOld.xPerColumn);
    const auto grow = [](int& first, int& count, double usual, int low, int size) {
      const int wanted = static_cast<int>(std::min(usual + kRounding, double{1 << 20}));
      const int grown = std::clamp(wanted, count, std::max(count, size));
      first = std::max(low, std::min(first, low + size - grown));
      count = grown;
    };
    BandRect needs = TurnedNeeds(tile);
    if (needs.width == 0) return needs;
    grow(needs.left, needs.width, cosine * tileColumns_ + sine * kTileRows, region.left,
         region.width);
    grow(needs.top, needs.height, sine * tileColumns_ + cosine * kTileRows, region.top,
         region.height);
    return needs;
  }

  /// The part of the turned source that a tile needs, as it is taken.
  const Band& Prepared(const Band& source, const BandRect& tile, Tiles& tiles) const {
    const BandRect needs = NeedsOfTile(tile, tiles.region);
    if (needs.width == 0) {
      Place(tiles.nothing, form_.Like(), {0, 0, 1, 1});
      return tiles.nothing;
    }
    if (quarters_) {
      // Prepared pixels are of another kind.
      if (form_.Changes()) tiles.turned.pixels = Raster();
      Place(tiles.turned, sourceLike_, needs);
      quarters_->Make(source, tiles.turned, {needs.top, needs.height});
    } else {
      tiles.turned = CutBand(source, needs);
    }
    if (form_.Changes()) tiles.turned.pixels = form_.Apply(std::move(tiles.turned.pixels));
    return tiles.turned;
  }

  void Take(const Band& source, Band& target, RowRange rows) const {
    if (form_.Form() != AveragedForm::none) return Interpolate(source, target, rows);
    const std::vector<uint8_t>& fill = form_.Fill();
    size_t filled = 0;
    for (int plane = 0; plane < detail::PlanesOf(source.pixels); ++plane) {
      const ConstPixelGrid from = detail::GridOf(source.pixels, plane);
      const PixelGrid to = detail::GridOf(target.pixels, plane);
      const int first = rows.first - target.top;
      const RotationParts parts{source.left, source.top, target.left, target.top};
      TakeNearest(from, to, fill.data() + filled, {first, rows.count}, parts);
      filled += from.BytesPerPixel();
    }
  }

  /// Nearest pixels of a raster or of one plane; `rows` counts from the target's first row.
  void TakeNearest(const ConstPixelGrid& source, const PixelGrid& target, const uint8_t* fill,
                   RowRange rows, const RotationParts& parts) const {
    const int first = rows.first, last = rows.first + rows.count;
    if (!mapping_) {
      return detail::GatherByAffine({task_.toOld, task_.source, fill, task_.IsClamped()}, source,
                                    target, first, last, parts);
    }
    if (source.bits <= 32) {
      uint32_t pixel = 0;
      for (size_t i = 0; i < source.BytesPerPixel(); ++i) pixel |= uint32_t{fill[i]} << (8 * i);
      kernels::RotatePixels(*mapping_, source.rows, target.rows, source.bits, pixel, first, last,
                            parts);
    } else {
      kernels::GatherPixels(*mapping_, source.rows, target.rows, source.BytesPerPixel(), fill,
                            first, last, parts);
    }
    if (task_.IsClamped()) {
      kernels::GatherEdges(*mapping_, source.rows, target.rows, source.bits, first, last, parts);
    }
  }

  void Interpolate(const Band& source, Band& target, RowRange rows) const {
    const detail::BandRows from(source, task_.source);
    detail::StoredRows to(target);
    const detail::LinearTask linear{task_.toOld, form_.Fill().data(), task_.IsClamped(),
                                    form_.HasNumbers() ? task_.how.noData : std::nullopt};
    const auto made = detail::MakeLinearRows(from, linear);
    std::vector<uint8_t> row(to.Rows().RowBytes());
    for (int y = rows.first; y < rows.first + rows.count; ++y) {
      made->Make(y, target.left, WidthOf(target.pixels), row.data());
      to.Store(y, row.data());
    }
  }

  const TurnTask task_;
  const std::optional<kernels::RotationMapping> mapping_;
  const std::unique_ptr<BandWork> quarters_;
  /// A pixel of the turned source.
  const Pixels sourceLike_;
  const detail::PreparedPixels form_;
  const int tileColumns_;
};

/// Rows that the affine leads to, with those around them.
RowRange SourceRows(const TurnTask& task, RowRange target) {
  constexpr double kAround = 2;
  if (target.count == 0) return {};
  double low = std::numeric_limits<double>::infinity(), high = -low;
  for (const double x : {0.0, task.target.width - 1.0}) {
    for (const double y : {target.first + 0.0, target.first + target.count - 1.0}) {
      const double row = task.toOld.At(x, y).y;
      low = std::min(low, row);
      high = std::max(high, row);
    }
  }
  const double last = task.source.height - 1;
  low = std::floor(low - kAround);
  high = std::ceil(high + kAround);
  if (!task.IsClamped() && (high < 0 || low > last)) return {};
  const auto first = static_cast<int>(std::clamp(low, 0.0, last));
  return {first, static_cast<int>(std::clamp(high, 0.0, last)) - first + 1};
}

class RotateRows : public BandStage {
 public:
  RotateRows(Sides source, const RotationFrame& frame, const Resampling& how)
      : BandStage(source),
        quarters_(TurnStage(source, frame.quarters)),
        hasQuarters_(frame.quarters != 0) {
    const Sides turned = frame.quarters % 2 == 0 ? source : Sides{source.height, source.width};
    hasRest_ = frame.rest != 0;
    // The affine of the rest alone: that of a picture of the turned sides.
    task_ = {turned, frame.sides, frame.toOld, frame.rest, how};
    if (hasQuarters_ && hasRest_) {
      const RotationFrame back = FrameOfRotation(turned, -90.0 * frame.quarters);
      task_.toOld = back.toOld.After(frame.toOld);
    }
  }

  RowRange Needs(RowRange target) const override {
    return quarters_->Needs(hasRest_ ? SourceRows(task_, target) : target);
  }

  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun& run) const override {
    auto quarters = hasQuarters_ || !hasRest_ ? quarters_->Start(like, run) : nullptr;
    if (!hasRest_) return quarters;
    return std::make_unique<TakenWork>(like, task_, std::move(quarters));
  }

  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    if (!hasRest_) return quarters_->Make(std::move(source), run, changes);
    return BandStage::Make(std::move(source), run, changes);
  }

 private:
  const std::unique_ptr<Stage> quarters_;
  const bool hasQuarters_;
  bool hasRest_ = false;
  TurnTask task_;
};

class AffineRows : public BandStage {
 public:
  explicit AffineRows(const TurnTask& task) : BandStage(task.source), task_(task) {}

  RowRange Needs(RowRange target) const override { return SourceRows(task_, target); }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return std::make_unique<TakenWork>(like, task_, nullptr);
  }

 private:
  const TurnTask task_;
};

}  // namespace

std::unique_ptr<Stage> RotateStage(Sides source, double degrees, const Resampling& how) {
  return std::make_unique<RotateRows>(source, FrameOfRotation(source, degrees), how);
}

std::unique_ptr<Stage> AffineStage(Sides source, const Affine& toOld, Sides target,
                                   const Resampling& how) {
  if (!toOld.IsFinite()) throw RangeError("a picture is taken along finite numbers only");
  if (target.width < 1 || target.height < 1) {
    throw RangeError("a picture has at least one pixel per side");
  }
  return std::make_unique<AffineRows>(TurnTask{source, target, toOld, 0, how});
}

}  // namespace rasterkit
