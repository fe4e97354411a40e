#include <QPainter>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_rect.h>
#include <rasterkit/dialogs/bitmapframe/cut_outline.h>

namespace rasterkit {
namespace {

constexpr QRgb kDark = 0xFF101010, kLight = 0xFFFFFFFF;
constexpr int kDarkWidth = 4, kLightWidth = 2;

QRect RectOf(const TRect& rect) {
  return {QPoint(rect.Left, rect.Top), QPoint(rect.Right - 1, rect.Bottom - 1)};
}

}  // namespace

// One of the tones differs from any picture.
void TBmpCutRect::DrawTwoTones(QPainter& painter) const {
  const TRect rect = CutRect().ToRect(), client = ClientRect();
  const auto frame = [&](int width, QRgb color) {
    for (const TRect& strip : OutlineStrips(rect, width, client)) {
      painter.fillRect(RectOf(strip), QColor::fromRgba(color));
    }
  };
  frame(kDarkWidth, kDark);
  frame(kLightWidth, kLight);
  // They would hide what the user aims at.
  if (DragIsActive()) return;
  for (const RMarkRect& mark : MarkRects()) {
    const QRect square = RectOf(mark.RectData);
    painter.fillRect(square, QColor::fromRgba(kDark));
    painter.fillRect(square.adjusted(1, 1, -1, -1), QColor::fromRgba(kLight));
  }
}

}  // namespace rasterkit
