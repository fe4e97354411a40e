#pragma once

#include <string>

#include <rasterkit/graphics/canvas.h>

namespace rasterkit {

/// What the mouse cursor tells about what a press would grab.
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

/// What the crop tool needs of whoever shows it. Nothing here may throw.
class CutView {
 public:
  /// The paint box's drawing area: (0, 0, width, height) in paint-box pixels.
  virtual TRect ClientRect() const = 0;
  /// Asks for a new painting, soon.
  virtual void Repaint() = 0;
  virtual void ShowCursor(CutCursor cursor) = 0;
  /// Puts the text into the size label, where there is one.
  virtual void ShowSizeText(const std::string& text) = 0;

 protected:
  ~CutView() = default;
};

}  // namespace rasterkit
