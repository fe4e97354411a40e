#pragma once

#include <vector>

#include <rasterkit/host/metafiles/drawing_path.h>

namespace rasterkit::detail {

/// Finds edges at which an area lies against one that was filled before. Each covers half of the
/// pixels there and lets through half of what the other left: the background shows as a fine line,
/// which devices without soft edges never had.
class SharedEdges {
 public:
  /// The slanted edges of the outline that an earlier one has on its other side; edges along the
  /// axes lie between pixels. The outline's own edges are remembered, the last few thousand of all.
  /// Only single closed figures of not too many lines count.
  DrawingPath SharedWith(const DrawingPath& outline);

 private:
  struct Edge {
    PointD from, to;  ///< the lesser point first
    bool isAreaLeft = false;
  };
  static constexpr size_t kEdges = 4096, kMostCorners = 256;

  /// By their places; a new one takes the room of an old one.
  std::vector<Edge> edges_;
};

}  // namespace rasterkit::detail
