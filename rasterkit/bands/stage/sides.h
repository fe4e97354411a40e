#pragma once

namespace rasterkit {

/// Width and height of a picture in pixels.
struct Sides {
  int width = 0, height = 0;
  friend bool operator==(const Sides&, const Sides&) = default;
};

}  // namespace rasterkit
