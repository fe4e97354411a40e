#include <algorithm>
#include <cmath>

#include <rasterkit/dialogs/bitmapframe/cut_shape.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

/// What moves along one axis.
enum class Side { none, low, high };

Side AcrossOf(EDragObjectType object) {
  if (object == doLeft || object == doLeftTop || object == doLeftBottom) return Side::low;
  if (object == doRight || object == doRightTop || object == doRightBottom) return Side::high;
  return Side::none;
}

Side DownOf(EDragObjectType object) {
  if (object == doTop || object == doLeftTop || object == doRightTop) return Side::low;
  if (object == doBottom || object == doLeftBottom || object == doRightBottom) return Side::high;
  return Side::none;
}

struct Span {
  int low = 0, high = 0;
  int Size() const { return high - low; }
};

int Whole(double value) {
  constexpr double kLimit = 1 << 30;
  return static_cast<int>(Round(std::clamp(value, -kLimit, kLimit)));
}

/// Returns the place to which an edge jumps, or its own.
double Snapped(double edge, int size, double distance) {
  double best = edge, least = distance;
  for (const double place : {0.0, size / 2.0, static_cast<double>(size)}) {
    const double away = std::abs(edge - place);
    if (away < least) {
      best = place;
      least = away;
    }
  }
  return best;
}

/// One axis of a cut whose edge moves to `edge`.
class Axis {
 public:
  Axis(Span start, Side side, bool fromCenter, int size)
      : start_(start), side_(side), fromCenter_(fromCenter || side == Side::none), size_(size) {}

  double Middle() const { return (double{0} + start_.low + start_.high) / 2; }
  /// Length if the moving edge is at `edge`.
  double LengthTo(double edge) const {
    if (side_ == Side::none) return start_.Size();
    const double anchor = fromCenter_ ? Middle() : side_ == Side::low ? start_.high : start_.low;
    const double away = side_ == Side::low ? anchor - edge : edge - anchor;
    return fromCenter_ ? 2 * away : away;
  }
  /// The greatest length inside the bitmap.
  int Room() const {
    if (fromCenter_) return Whole(std::floor(2 * std::min(Middle(), size_ - Middle())));
    return side_ == Side::low ? start_.high : size_ - start_.low;
  }
  Span Of(int length) const {
    if (fromCenter_) {
      const int low = std::clamp(Whole(Middle() - length / 2.0), 0, std::max(size_ - length, 0));
      return {low, low + length};
    }
    if (side_ == Side::low) return {start_.high - length, start_.high};
    return {start_.low, start_.low + length};
  }

 private:
  Span start_;
  Side side_;
  bool fromCenter_;
  int size_;
};

int Limited(double length, int room) {
  return std::clamp(Whole(length), 1, std::max(room, 1));
}

struct Size {
  int width = 1, height = 1;
};

/// The size of a ratio nearest to `width`, inside the room.
Size OfRatio(double width, double ratio, int roomAcross, int roomDown) {
  const double most = std::min<double>(roomAcross, roomDown * ratio);
  if (width >= most && roomDown * ratio < roomAcross) {
    const int height = std::max(roomDown, 1);
    return {Limited(height * ratio, roomAcross), height};
  }
  const int across = Limited(std::min(width, most), roomAcross);
  return {across, Limited(across / ratio, roomDown)};
}

TRect MovedCut(const CutDrag& drag) {
  const auto move = [&](int low, int high, double shift, int size) {
    const int length = high - low;
    double best = low + shift, away = drag.snap;
    for (const double place : {0.0, (size - length) / 2.0, static_cast<double>(size - length)}) {
      if (std::abs(low + shift - place) < away) {
        away = std::abs(low + shift - place);
        best = place;
      }
    }
    const int start = std::clamp(Whole(best), 0, std::max(size - length, 0));
    return Span{start, start + length};
  };
  const Span across =
      move(drag.start.Left, drag.start.Right, drag.toX - drag.fromX, drag.bitmapWidth);
  const Span down =
      move(drag.start.Top, drag.start.Bottom, drag.toY - drag.fromY, drag.bitmapHeight);
  return {across.low, down.low, across.high, down.high};
}

TRect Centered(double x, double y, Size size, int bitmapWidth, int bitmapHeight) {
  const int width = std::min(size.width, bitmapWidth), height = std::min(size.height, bitmapHeight);
  const int left = std::clamp(Whole(x - width / 2.0), 0, bitmapWidth - width);
  const int top = std::clamp(Whole(y - height / 2.0), 0, bitmapHeight - height);
  return {left, top, left + width, top + height};
}

/// A drag of a handle, or of the corner of a new cut.
TRect ResizedBy(const CutDrag& drag, Side acrossSide, Side downSide, double edgeX, double edgeY) {
  const Axis across({drag.start.Left, drag.start.Right}, acrossSide, drag.fromCenter,
                    drag.bitmapWidth);
  const Axis down({drag.start.Top, drag.start.Bottom}, downSide, drag.fromCenter,
                  drag.bitmapHeight);
  const double width = across.LengthTo(Snapped(edgeX, drag.bitmapWidth, drag.snap));
  const double height = down.LengthTo(Snapped(edgeY, drag.bitmapHeight, drag.snap));
  Size size;
  if (drag.shape.ratio <= 0) {
    size.width = acrossSide == Side::none ? drag.start.Right - drag.start.Left
                                          : Limited(width, across.Room());
    size.height =
        downSide == Side::none ? drag.start.Bottom - drag.start.Top : Limited(height, down.Room());
  } else {
    const double ratio = drag.shape.ratio;
    const double wanted = acrossSide == Side::none ? height * ratio
                          : downSide == Side::none ? width
                                                   : std::max(width, height * ratio);
    size = OfRatio(std::max(wanted, 1.0), ratio, across.Room(), down.Room());
  }
  const Span x = across.Of(size.width), y = down.Of(size.height);
  return {x.low, y.low, x.high, y.high};
}

/// A new cut grows from the pixel corner that was pressed.
TRect NewCut(const CutDrag& drag) {
  if (drag.shape.IsFixed()) {
    return Centered(drag.toX, drag.toY, {drag.shape.width, drag.shape.height}, drag.bitmapWidth,
                    drag.bitmapHeight);
  }
  CutDrag fresh = drag;
  const int x =
      std::clamp(Whole(Snapped(drag.fromX, drag.bitmapWidth, drag.snap)), 0, drag.bitmapWidth);
  const int y =
      std::clamp(Whole(Snapped(drag.fromY, drag.bitmapHeight, drag.snap)), 0, drag.bitmapHeight);
  // At the last corner there is room on one side alone.
  const bool toLeft = drag.fromCenter ? false : x == drag.bitmapWidth || (drag.toX < x && x > 0);
  const bool toTop = drag.fromCenter ? false : y == drag.bitmapHeight || (drag.toY < y && y > 0);
  fresh.start = {x, y, x, y};
  const double edgeX = drag.fromCenter ? x + std::abs(drag.toX - x) : drag.toX;
  const double edgeY = drag.fromCenter ? y + std::abs(drag.toY - y) : drag.toY;
  return ResizedBy(fresh, toLeft ? Side::low : Side::high, toTop ? Side::low : Side::high, edgeX,
                   edgeY);
}

}  // namespace

TRect DraggedCut(const CutDrag& drag) {
  if (drag.object == doFrame) return NewCut(drag);
  if (drag.object == doMove || drag.shape.IsFixed()) return MovedCut(drag);
  const Side across = AcrossOf(drag.object), down = DownOf(drag.object);
  const double edgeX =
      (across == Side::low ? drag.start.Left : drag.start.Right) + drag.toX - drag.fromX;
  const double edgeY =
      (down == Side::low ? drag.start.Top : drag.start.Bottom) + drag.toY - drag.fromY;
  return ResizedBy(drag, across, down, edgeX, edgeY);
}

TRect ReshapedCut(const TRect& cut, const CutShape& shape, int bitmapWidth, int bitmapHeight) {
  const double width = cut.Right - cut.Left, height = cut.Bottom - cut.Top;
  const bool isNew = width <= 0 || height <= 0;
  const double x = isNew ? bitmapWidth / 2.0 : cut.Left + width / 2;
  const double y = isNew ? bitmapHeight / 2.0 : cut.Top + height / 2;
  if (shape.IsFixed()) {
    return Centered(x, y, {shape.width, shape.height}, bitmapWidth, bitmapHeight);
  }
  if (shape.ratio <= 0) return isNew ? TRect{0, 0, bitmapWidth, bitmapHeight} : cut;
  const double wanted = isNew ? bitmapWidth : std::sqrt(width * height * shape.ratio);
  return Centered(x, y, OfRatio(std::max(wanted, 1.0), shape.ratio, bitmapWidth, bitmapHeight),
                  bitmapWidth, bitmapHeight);
}

TRect ResizedCut(const TRect& cut, int dx, int dy, const CutShape& shape, int bitmapWidth,
                 int bitmapHeight) {
  if (shape.IsFixed()) return cut;
  const int roomAcross = bitmapWidth - cut.Left, roomDown = bitmapHeight - cut.Top;
  Size size{std::clamp(cut.Right - cut.Left + dx, 1, roomAcross),
            std::clamp(cut.Bottom - cut.Top + dy, 1, roomDown)};
  if (shape.ratio > 0) {
    const double wanted = dx != 0 ? size.width : size.height * shape.ratio;
    size = OfRatio(std::max(wanted, 1.0), shape.ratio, roomAcross, roomDown);
  }
  return {cut.Left, cut.Top, cut.Left + size.width, cut.Top + size.height};
}

}  // namespace rasterkit
