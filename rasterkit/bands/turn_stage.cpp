#include <algorithm>
#include <utility>

#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/kernels/turn/mirror_pixels.h>
#include <rasterkit/kernels/turn/turn_samples.h>

namespace rasterkit {
namespace {

using kernels::AxisTurn;

AxisTurn TurnFor(int quarters) {
  switch (quarters & 3) {
    case 1:
      return kernels::kQuarterTurnCounterClockwise;
    case 2:
      return kernels::kHalfTurn;
    case 3:
      return kernels::kQuarterTurnClockwise;
    default:
      return {};
  }
}

Pixels KindAfter(const Pixels& like, AxisTurn turn) {
  Pixels kind = NewPixels(like, 1, 1);
  if (turn.transpose) {
    std::visit([](auto& rows) { std::swap(rows.resolution.x, rows.resolution.y); }, kind);
  }
  return kind;
}

Sides Turned(Sides source, AxisTurn turn) {
  return turn.transpose ? Sides{source.height, source.width} : source;
}

/// Moves pixels to other axes.
class AxisWork : public BandWork {
 public:
  AxisWork(const Pixels& like, Sides source, AxisTurn turn)
      : like_(KindAfter(like, turn)), size_(Turned(source, turn)), turn_(turn) {}

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return size_; }
  bool MakesParts() const override { return true; }

  BandRect Needs(const BandRect& target) const override {
    const int u = turn_.mirrorX ? size_.width - target.left - target.width : target.left;
    const int v = turn_.mirrorY ? size_.height - target.top - target.height : target.top;
    if (turn_.transpose) return {v, u, target.height, target.width};
    return {u, v, target.width, target.height};
  }

  void Make(const Band& source, Band& target, RowRange rows) const override {
    BandRect from = Needs({target.left, rows.first, WidthOf(target.pixels), rows.count});
    from.left -= source.left;
    from.top -= source.top;
    for (int plane = 0; plane < detail::PlanesOf(source.pixels); ++plane) {
      const detail::ConstPixelGrid grid = detail::GridOf(source.pixels, plane);
      const detail::GridPart part = detail::PartOf(grid, from);
      kernels::PixelRows to = detail::GridOf(target.pixels, plane).rows;
      to = {to.Row(rows.first - target.top), to.stride, to.width, rows.count};
      kernels::TurnSamples(part.rows, to, grid.bits, turn_, part.skipped);
    }
  }

  /// Rows of the result that are columns of the source share its cache lines. With up to seven more
  /// columns in front of them, packed ones still fill as few lines.
  int RowsOfPiece() const override {
    constexpr int kLine = 64, kByteColumns = 8;
    if (!turn_.transpose) return 0;
    const detail::ConstPixelGrid grid = detail::GridOf(like_, 0);
    if (grid.bits < 8) return kLine * 8 - kByteColumns;
    const int rows = detail::PieceOf(
        size_.height, grid.BytesPerPixel() * static_cast<size_t>(std::max(1, size_.width)));
    return (rows + kLine - 1) / kLine * kLine;
  }

 private:
  const Pixels like_;
  const Sides size_;
  const AxisTurn turn_;
};

void ExchangeRows(const kernels::PixelRows& rows, int first, int last) {
  for (int y = first; y < last; ++y) {
    std::swap_ranges(rows.Row(y), rows.Row(y) + rows.stride, rows.Row(rows.height - 1 - y));
  }
}

/// Exchanges left and right, or top and bottom.
void MirrorInPlace(Pixels& pixels, AxisTurn turn, const StageRun& run) {
  const int planes = detail::PlanesOf(pixels);
  for (int plane = 0; plane < planes; ++plane) {
    const detail::PixelGrid grid = detail::GridOf(pixels, plane);
    const int count = turn.mirrorX ? grid.rows.height : grid.rows.height / 2;
    detail::ForRows(count, detail::PieceOf(count, grid.rows.stride), run,
                    {static_cast<double>(plane) / planes, static_cast<double>(plane + 1) / planes},
                    [&](int first, int last) {
                      if (!turn.mirrorX) return ExchangeRows(grid.rows, first, last);
                      kernels::MirrorLeftRight(
                          {grid.rows.Row(first), grid.rows.stride, grid.rows.width, last - first},
                          grid.bits);
                    });
  }
  if (auto* raster = std::get_if<Raster>(&pixels)) raster->ClearPadding();
}

class AxisStage : public BandStage {
 public:
  AxisStage(Sides source, AxisTurn turn) : BandStage(source), turn_(turn) {}

  RowRange Needs(RowRange target) const override {
    if (turn_.transpose) return {0, target.count == 0 ? 0 : Source().height};
    if (!turn_.mirrorY) return target;
    return {Source().height - target.first - target.count, target.count};
  }

  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return std::make_unique<AxisWork>(like, Source(), turn_);
  }

  /// Whole pictures are mirrored in place: new memory would take longer.
  Pixels Make(Pixels source, const StageRun& run, Changes& changes) const override {
    constexpr int kMostBits = 32;
    const bool isInPlace = !turn_.transpose && !(turn_.mirrorX && turn_.mirrorY) &&
                           detail::GridOf(std::as_const(source), 0).bits <= kMostBits;
    if (!isInPlace) return BandStage::Make(std::move(source), run, changes);
    detail::RequireSides(source, Source());
    if (turn_ != AxisTurn{}) MirrorInPlace(source, turn_, run);
    return source;
  }

 private:
  const AxisTurn turn_;
};

}  // namespace

std::unique_ptr<Stage> TurnStage(Sides source, int quarters) {
  return std::make_unique<AxisStage>(source, TurnFor(quarters));
}

std::unique_ptr<Stage> MirrorStage(Sides source, MirrorAxis axis) {
  const bool isLeftRight = axis == MirrorAxis::leftRight;
  return std::make_unique<AxisStage>(source, AxisTurn{false, isLeftRight, !isLeftRight});
}

}  // namespace rasterkit
