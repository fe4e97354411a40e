#pragma once

#include <array>
#include <vector>

#include <rasterkit/drawing/ink/drawing_path.h>

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
    bool isThere = false;
  };
  static constexpr size_t kShelves = 2048, kMostCorners = 256;
  /// A few edges whose places give the same number.
  struct Shelf {
    std::array<Edge, 4> edges;
    unsigned next = 0;  ///< the one that goes when there is no room
  };

  /// Whether an earlier area lies on the edge's other side; the edge is done with then, else
  /// remembered.
  bool Meets(const Edge& edge);

  std::vector<Shelf> shelves_;
};

}  // namespace rasterkit::detail
