#include <algorithm>
#include <cmath>

#include <rasterkit/drawing/ink/drawing_path.h>

namespace rasterkit::detail {

double CairoNumber(double value) {
  // 24 integer bits: one for the sign, the rest with room for the width of a pen.
  constexpr double kLimit = 1 << 22;
  return std::isfinite(value) ? std::clamp(value, -kLimit, kLimit) : 0;
}

void DrawingPath::MoveTo(PointD to) {
  // Only the last of consecutive moves counts.
  if (!verbs_.empty() && verbs_.back() == Verb::move) {
    points_.back() = to;
    return;
  }
  verbs_.push_back(Verb::move);
  points_.push_back(to);
}

void DrawingPath::LineTo(PointD to) {
  verbs_.push_back(Verb::line);
  points_.push_back(to);
}

void DrawingPath::CurveTo(PointD c1, PointD c2, PointD to) {
  verbs_.push_back(Verb::curve);
  points_.insert(points_.end(), {c1, c2, to});
}

void DrawingPath::Close() {
  if (!verbs_.empty() && verbs_.back() != Verb::close) verbs_.push_back(Verb::close);
}

void DrawingPath::AddRect(const RectD& rect) {
  MoveTo({rect.left, rect.top});
  LineTo({rect.right, rect.top});
  LineTo({rect.right, rect.bottom});
  LineTo({rect.left, rect.bottom});
  Close();
}

void DrawingPath::Append(const DrawingPath& other) {
  verbs_.insert(verbs_.end(), other.verbs_.begin(), other.verbs_.end());
  points_.insert(points_.end(), other.points_.begin(), other.points_.end());
}

void DrawingPath::Clear() {
  verbs_.clear();
  points_.clear();
}

void DrawingPath::Transform(const PlaneAffine& map) {
  for (PointD& point : points_) point = map(point);
}

std::optional<RectD> DrawingPath::Bounds() const {
  if (points_.empty()) return std::nullopt;
  RectD bounds{points_[0].x, points_[0].y, points_[0].x, points_[0].y};
  for (const PointD& p : points_) {
    bounds.left = std::min(bounds.left, p.x);
    bounds.top = std::min(bounds.top, p.y);
    bounds.right = std::max(bounds.right, p.x);
    bounds.bottom = std::max(bounds.bottom, p.y);
  }
  return bounds;
}

std::optional<RectD> DrawingPath::AsRect() const {
  size_t lines = 0;
  for (size_t i = 0; i < verbs_.size(); ++i) {
    if (verbs_[i] == Verb::curve || (verbs_[i] == Verb::move) != (i == 0)) return std::nullopt;
    if (verbs_[i] == Verb::close && i + 1 != verbs_.size()) return std::nullopt;
    lines += verbs_[i] == Verb::line;
  }
  const auto& p = points_;
  if (lines != 3 && !(lines == 4 && p[4] == p[0])) return std::nullopt;
  const bool across = p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x;
  const bool down = p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y;
  if (!across && !down) return std::nullopt;
  return Bounds();
}

}  // namespace rasterkit::detail
