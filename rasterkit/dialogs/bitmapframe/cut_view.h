#pragma once

#include <string>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// The mouse cursor, which shows what a press would grab.
enum class CutCursor {
  standard,
  sizeAll,
  cross,
  westEast,
  northSouth,
  northWestSouthEast,
  northEastSouthWest,
  pan
};

/// What the crop tool needs from its widgets. The functions must not throw.
class CutView {
 public:
  /// Returns the drawing area of the paint box: (0, 0, width, height) in paint-box pixels.
  virtual TRect ClientRect() const = 0;
  /// Schedules a repaint.
  virtual void Repaint() = 0;
  virtual void ShowCursor(CutCursor cursor) = 0;
  /// Shows the text in the size label, if there is one.
  virtual void ShowSizeText(const std::string& text) = 0;

 protected:
  ~CutView() = default;
};

}  // namespace rasterkit
