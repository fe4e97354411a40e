#include <algorithm>

#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/lossless/block_grid.h>

namespace rasterkit {
namespace detail {

std::optional<BlockGrid> BlockGridOf(const JpegForm& form) {
  constexpr int kMostFactor = 4;
  BlockGrid grid;
  if (form.components.empty()) return std::nullopt;
  for (const JpegForm::Component& component : form.components) {
    if (std::clamp(component.h, 1, kMostFactor) != component.h) return std::nullopt;
    if (std::clamp(component.v, 1, kMostFactor) != component.v) return std::nullopt;
    grid.mostH = std::max(grid.mostH, component.h);
    grid.mostV = std::max(grid.mostV, component.v);
  }
  // The blocks of a single component stand alone: its factors do not count.
  const bool isSingle = form.components.size() == 1;
  grid.unitWidth = kBlockPixels * (isSingle ? 1 : grid.mostH);
  grid.unitHeight = kBlockPixels * (isSingle ? 1 : grid.mostV);
  return grid;
}

bool ReversesSourceColumns(const PictureMove& move) {
  return move.exchangesAxes ? move.reversesRows : move.reversesColumns;
}

bool ReversesSourceRows(const PictureMove& move) {
  return move.exchangesAxes ? move.reversesColumns : move.reversesRows;
}

}  // namespace detail

namespace {

/// Moves the edge that becomes the first one inward, to a multiple of `unit`.
void Shrink(int& first, int& count, int unit, bool isReversed) {
  const int end = first + count;
  if (isReversed) {
    count = end / unit * unit - first;
  } else {
    const int64_t aligned = (int64_t{first} + unit - 1) / unit * unit;
    first = static_cast<int>(std::min<int64_t>(aligned, end));
    count = end - first;
  }
}

}  // namespace

std::optional<PictureMove> MovableJpegPart(const JpegForm& form, int width, int height,
                                           const PictureMove& move) {
  const auto grid = detail::BlockGridOf(form);
  if (!grid || form.arithmetic) return std::nullopt;
  const bool isInside = move.left >= 0 && move.top >= 0 && move.width > 0 && move.height > 0 &&
                        int64_t{move.left} + move.width <= width &&
                        int64_t{move.top} + move.height <= height;
  if (!isInside) return std::nullopt;
  PictureMove part = move;
  Shrink(part.left, part.width, grid->unitWidth, detail::ReversesSourceColumns(move));
  Shrink(part.top, part.height, grid->unitHeight, detail::ReversesSourceRows(move));
  if (part.width <= 0 || part.height <= 0) return std::nullopt;
  return part;
}

}  // namespace rasterkit
