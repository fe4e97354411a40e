#include <algorithm>
#include <type_traits>

#include <rasterkit/codecs/jpeg/lossless/moved_blocks.h>
#include <rasterkit/kernels/turn/turn_blocks.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

static_assert(std::is_same_v<JCOEF, int16_t> && DCTSIZE2 == kernels::kBlockCoefficients);

/// Blocks of a tile, so that the lines of the source that a column passes stay in the cache.
constexpr int kTileColumns = 32, kTileRows = 8;

/// Blocks that hold `pixels` pixels of a component with this factor.
int BlocksOf(int pixels, int factor, int mostFactor) {
  const int unit = kBlockPixels * mostFactor;
  return static_cast<int>((int64_t{pixels} * factor + unit - 1) / unit);
}

}  // namespace

BlockPath::BlockPath(const BlockGrid& grid, const JpegForm::Component& component,
                     const PictureMove& move)
    : move_(move) {
  const int columns = BlocksOf(move.width, component.h, grid.mostH);
  const int rows = BlocksOf(move.height, component.v, grid.mostV);
  counts_ = move.exchangesAxes ? BlockCounts{rows, columns} : BlockCounts{columns, rows};
  // The edge that becomes the first one lies on a border of blocks, so nothing is rounded.
  const auto firstOf = [](int edge, int factor, int mostFactor, bool isReversed) {
    return BlocksOf(edge, factor, mostFactor) - (isReversed ? 1 : 0);
  };
  const bool reversesColumns = ReversesSourceColumns(move), reversesRows = ReversesSourceRows(move);
  firstX_ = firstOf(reversesColumns ? move.left + move.width : move.left, component.h, grid.mostH,
                    reversesColumns);
  firstY_ = firstOf(reversesRows ? move.top + move.height : move.top, component.v, grid.mostV,
                    reversesRows);
  stepX_ = reversesColumns ? -1 : 1;
  stepY_ = reversesRows ? -1 : 1;
}

void BlockPath::Fill(const BlockRows& source, const BlockRows& target) const {
  for (int top = 0; top < counts_.rows; top += kTileRows) {
    RequireTime();
    const int bottom = std::min(top + kTileRows, counts_.rows);
    for (int left = 0; left < counts_.columns; left += kTileColumns) {
      const int columns = std::min(kTileColumns, counts_.columns - left);
      for (int row = top; row < bottom; row++) FillTile(source, target, left, row, columns);
    }
  }
}

void BlockPath::FillTile(const BlockRows& source, const BlockRows& target, int left, int row,
                         int columns) const {
  const int16_t* blocks[kTileColumns];
  for (int i = 0; i < columns; i++) {
    const int x = firstX_ + stepX_ * (move_.exchangesAxes ? row : left + i);
    const int y = firstY_ + stepY_ * (move_.exchangesAxes ? left + i : row);
    blocks[i] = source[static_cast<size_t>(y)][x];
  }
  kernels::TurnBlocks(blocks, static_cast<size_t>(columns),
                      {move_.exchangesAxes, move_.reversesColumns, move_.reversesRows},
                      target[static_cast<size_t>(row)][left]);
}

}  // namespace rasterkit::detail
