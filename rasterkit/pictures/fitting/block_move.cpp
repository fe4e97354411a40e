#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/pictures/fitting/block_move.h>

namespace rasterkit::detail {

PictureMove MoveOf(const Affine& toOld, int width, int height) {
  PictureMove move;
  move.exchangesAxes = toOld.xPerColumn == 0;
  const MapPoint first = toOld.At(0, 0), last = toOld.At(width - 1, height - 1);
  move.left = static_cast<int>(std::lround(std::min(first.x, last.x)));
  move.top = static_cast<int>(std::lround(std::min(first.y, last.y)));
  move.width = move.exchangesAxes ? height : width;
  move.height = move.exchangesAxes ? width : height;
  move.reversesColumns = (move.exchangesAxes ? toOld.yPerColumn : toOld.xPerColumn) < 0;
  move.reversesRows = (move.exchangesAxes ? toOld.xPerRow : toOld.yPerRow) < 0;
  return move;
}

EdgePixels DroppedBy(const PictureMove& part, const PictureMove& whole) {
  EdgePixels dropped;
  dropped.left = part.left - whole.left;
  dropped.top = part.top - whole.top;
  dropped.right = whole.left + whole.width - part.left - part.width;
  dropped.bottom = whole.top + whole.height - part.top - part.height;
  if (whole.exchangesAxes) {
    std::swap(dropped.left, dropped.top);
    std::swap(dropped.right, dropped.bottom);
  }
  if (whole.reversesColumns) std::swap(dropped.left, dropped.right);
  if (whole.reversesRows) std::swap(dropped.top, dropped.bottom);
  return dropped;
}

std::string TextOf(const EdgePixels& edges) {
  std::vector<std::string> texts;
  const auto add = [&](int count, const char* what, const char* edge) {
    if (count == 0) return;
    texts.push_back(
        fmt::format("{} {}{} at the {} edge", count, what, count == 1 ? "" : "s", edge));
  };
  add(edges.left, "column", "left");
  add(edges.right, "column", "right");
  add(edges.top, "row", "top");
  add(edges.bottom, "row", "bottom");
  return fmt::format("{}", fmt::join(texts, " and "));
}

}  // namespace rasterkit::detail
