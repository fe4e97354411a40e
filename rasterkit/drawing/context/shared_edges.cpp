#include <bit>
#include <cmath>
#include <cstdint>
#include <span>
#include <tuple>

#include <rasterkit/drawing/context/shared_edges.h>

namespace rasterkit::detail {
namespace {

using Verb = DrawingPath::Verb;

bool IsSlanted(PointD a, PointD b) {
  constexpr double kStraight = 1.0 / 64;
  return std::abs(a.x - b.x) >= kStraight && std::abs(a.y - b.y) >= kStraight;
}

bool IsOneFigureOfLines(const DrawingPath& outline) {
  const auto& verbs = outline.Verbs();
  if (verbs.size() < 4 || verbs.front() != Verb::move || verbs.back() != Verb::close) return false;
  for (size_t i = 1; i + 1 < verbs.size(); ++i) {
    if (verbs[i] != Verb::line) return false;
  }
  return true;
}

/// Returns a positive number if the corners run clockwise, with y downward.
double Turn(std::span<const PointD> corners) {
  double area = 0;
  PointD last = corners.back();
  for (const PointD& corner : corners) {
    area += last.x * corner.y - corner.x * last.y;
    last = corner;
  }
  return area;
}

uint64_t Mixed(uint64_t hash, double value) {
  hash = (hash ^ std::bit_cast<uint64_t>(value)) * 0x9E3779B97F4A7C15;
  return hash ^ hash >> 29;
}

}  // namespace

bool SharedEdges::Meets(const Edge& edge) {
  uint64_t hash = 0;
  for (const double part : {edge.from.x, edge.from.y, edge.to.x, edge.to.y}) {
    hash = Mixed(hash, part);
  }
  Shelf& shelf = shelves_[hash % kShelves];
  Edge* room = nullptr;
  for (Edge& known : shelf.edges) {
    if (!known.isThere) {
      room = &known;
    } else if (known.from == edge.from && known.to == edge.to) {
      known.isThere = known.isAreaLeft == edge.isAreaLeft;
      return !known.isThere;
    }
  }
  if (!room) room = &shelf.edges[shelf.next++ % shelf.edges.size()];
  *room = edge;
  return false;
}

DrawingPath SharedEdges::SharedWith(const DrawingPath& outline) {
  DrawingPath shared;
  const std::span<const PointD> corners = outline.Points();
  if (corners.size() > kMostCorners || !IsOneFigureOfLines(outline)) return shared;
  if (shelves_.empty()) shelves_.resize(kShelves);
  const bool isWithClock = Turn(corners) > 0;
  PointD last = corners.back();
  for (const PointD& corner : corners) {
    const bool isForward = std::tie(last.x, last.y) < std::tie(corner.x, corner.y);
    const Edge edge{isForward ? last : corner, isForward ? corner : last, isForward != isWithClock,
                    true};
    last = corner;
    if (IsSlanted(edge.from, edge.to) && Meets(edge)) {
      shared.MoveTo(edge.from);
      shared.LineTo(edge.to);
    }
  }
  return shared;
}

}  // namespace rasterkit::detail
