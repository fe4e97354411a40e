#include <algorithm>

#include <rasterkit/dialogs/bitmapframe/mark_rects.h>

namespace rasterkit {
namespace {

/// The middle of two coordinates without overflow.
int Middle(int a, int b) {
  return static_cast<int>((int64_t{a} + b) / 2);
}

RMarkRect Square(EDragObjectType type, int centerX, int centerY, int side) {
  const int left = centerX - side / 2, top = centerY - side / 2;
  return {type, {left, top, left + side, top + side}};
}

/// The bar of a corner at (x, y) that reaches `dx` to the side and `dy` down, both signed.
RMarkRect Bar(EDragObjectType type, int x, int y, int dx, int dy) {
  return {type,
          {std::min(x, x + dx), std::min(y, y + dy), std::max(x, x + dx), std::max(y, y + dy)}};
}

/// Both bars of a corner; `right` and `down` are 1 or -1 and point into the rectangle.
void AddCorner(std::vector<RMarkRect>& marks, EDragObjectType type, const TPoint& corner, int right,
               int down, int side) {
  const int thickness = std::max(side / 2, 1);
  marks.push_back(Bar(type, corner.X, corner.Y, right * side, down * thickness));
  marks.push_back(Bar(type, corner.X, corner.Y, right * thickness, down * side));
}

bool Holds(const TRect& rect, int x, int y) {
  return x >= rect.Left && x <= rect.Right && y >= rect.Top && y <= rect.Bottom;
}

}  // namespace

std::vector<RMarkRect> MakeMarkRects(const TRect& rect, int side) {
  const int middleX = Middle(rect.Left, rect.Right), middleY = Middle(rect.Top, rect.Bottom);
  std::vector<RMarkRect> marks = {
      Square(doLeft, rect.Left, middleY, side), Square(doTop, middleX, rect.Top, side),
      Square(doRight, rect.Right, middleY, side), Square(doBottom, middleX, rect.Bottom, side)};
  AddCorner(marks, doLeftTop, {rect.Left, rect.Top}, 1, 1, side);
  AddCorner(marks, doRightTop, {rect.Right, rect.Top}, -1, 1, side);
  AddCorner(marks, doLeftBottom, {rect.Left, rect.Bottom}, 1, -1, side);
  AddCorner(marks, doRightBottom, {rect.Right, rect.Bottom}, -1, -1, side);
  return marks;
}

EDragObjectType MarkAt(const std::vector<RMarkRect>& marks, int x, int y) {
  const auto found = std::find_if(marks.begin(), marks.end(), [&](const RMarkRect& mark) {
    return Holds(mark.RectData, x, y);
  });
  return found == marks.end() ? doNone : found->RectType;
}

}  // namespace rasterkit
