#pragma once

#include <array>
#include <vector>

#include <rasterkit/drawing/ink/drawing_path.h>

namespace rasterkit::detail {

/// Finds edges between an area and one that was filled before. Antialiased, each area covers half
/// of an edge's pixels and lets half of the rest through: the background shows as a thin line,
/// which devices without antialiasing did not have.
class SharedEdges {
 public:
  /// Returns the slanted edges of the outline that an earlier outline has on its other side; edges
  /// along the axes lie between pixels and need no repair. The outline's edges are stored for later
  /// calls; a few thousand are kept. Only single closed figures with a limited number of lines
  /// count.
  DrawingPath SharedWith(const DrawingPath& outline);

 private:
  struct Edge {
    PointD from, to;  ///< the smaller point first
    bool isAreaLeft = false;
    bool isThere = false;
  };
  static constexpr size_t kShelves = 2048, kMostCorners = 256;
  /// A bucket of the hash table: edges with the same hash.
  struct Shelf {
    std::array<Edge, 4> edges;
    unsigned next = 0;  ///< the edge that is replaced next
  };

  /// Returns whether an earlier area lies on the other side of the edge. If so the edge is removed,
  /// else it is stored.
  bool Meets(const Edge& edge);

  std::vector<Shelf> shelves_;
};

}  // namespace rasterkit::detail
