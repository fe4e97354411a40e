#include <utility>

#include <rasterkit/bands/pixel_grid.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/bands/stages.h>
#include <rasterkit/kernels/turn/turn_samples.h>

namespace rasterkit {
namespace {

using detail::PixelGrid;
using kernels::AxisTurn;

/// Columns of packed pixels are shared among threads by whole words.
constexpr int kPackedStep = 64;

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

kernels::PixelRows Part(const kernels::PixelRows& rows, int first, int last) {
  return {rows.Row(first), rows.stride, rows.width, last - first};
}

kernels::ConstPixelRows RowsOf(const kernels::ConstPixelRows& rows, int first, int last) {
  return {rows.Row(first), rows.stride, rows.width, last - first};
}

kernels::ConstPixelRows ColumnsOf(const kernels::ConstPixelRows& rows, int bits, int first,
                                  int last) {
  return {rows.data + static_cast<size_t>(first) * static_cast<size_t>(bits) / 8, rows.stride,
          last - first, rows.height};
}

/// Moves the target rows that show the source rows (transposed: columns) `first` to `last - 1`.
void TurnPart(const kernels::ConstPixelRows& source, const kernels::PixelRows& target, int bits,
              AxisTurn turn, int first, int last) {
  const int low = turn.mirrorY ? target.height - last : first;
  const int high = turn.mirrorY ? target.height - first : last;
  const auto from =
      turn.transpose ? ColumnsOf(source, bits, first, last) : RowsOf(source, first, last);
  kernels::TurnSamples(from, Part(target, low, high), bits, turn);
}

void TurnGrid(const PixelGrid& source, const PixelGrid& target, AxisTurn turn, const StageRun& run,
              const detail::ProgressShare& share) {
  const int count = turn.transpose ? source.rows.width : source.rows.height;
  int piece = detail::PieceOf(
      count, source.BytesPerPixel() *
                 static_cast<size_t>(turn.transpose ? source.rows.height : source.rows.width));
  if (turn.transpose) piece = (piece + kPackedStep - 1) / kPackedStep * kPackedStep;
  detail::ForRows(count, piece, run, share, [&](int first, int last) {
    TurnPart(source.rows, target.rows, source.bits, turn, first, last);
  });
}

Raster Turned(Raster source, AxisTurn turn, const StageRun& run) {
  Raster target(source.Format(), turn.transpose ? source.Height() : source.Width(),
                turn.transpose ? source.Width() : source.Height());
  target.CopyProperties(source);
  if (turn.transpose) std::swap(target.resolution.x, target.resolution.y);
  TurnGrid(detail::GridOf(source), detail::GridOf(target), turn, run, {});
  return target;
}

Samples Turned(Samples source, AxisTurn turn, const StageRun& run) {
  Samples target(source.Layout(), turn.transpose ? source.Height() : source.Width(),
                 turn.transpose ? source.Width() : source.Height(), source.Planes() > 1);
  target.resolution = source.resolution;
  if (turn.transpose) std::swap(target.resolution.x, target.resolution.y);
  for (int plane = 0; plane < source.Planes(); ++plane) {
    TurnGrid(detail::GridOf(source, plane), detail::GridOf(target, plane), turn, run,
             {static_cast<double>(plane) / source.Planes(),
              static_cast<double>(plane + 1) / source.Planes()});
  }
  return target;
}

class AxisStage : public Stage {
 public:
  AxisStage(Sides source, AxisTurn turn) : source_(source), turn_(turn) {}

  RowRange Needs(RowRange target) const override {
    if (turn_.transpose) return {0, target.count == 0 ? 0 : source_.height};
    if (!turn_.mirrorY) return target;
    return {source_.height - target.first - target.count, target.count};
  }

  Pixels Make(Pixels source, const StageRun& run, Changes&) const override {
    detail::RequireSides(source, source_);
    if (turn_ == AxisTurn{}) return source;
    return std::visit([&](auto& rows) -> Pixels { return Turned(std::move(rows), turn_, run); },
                      source);
  }

 private:
  const Sides source_;
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
