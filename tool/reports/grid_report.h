#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tool/pictures/placement/geo_position.h"
#include "tool/pictures/placement/grid_file.h"

namespace rasterkit::tool {

struct GridQuestions {
  std::string file;
  /// Columns and rows, counted from 0 at the upper left.
  std::vector<MapPoint> pixels;
  std::vector<MapPoint> mapPoints;
  bool json = false;
};

/// One answered question.
struct GridAnswer {
  /// The pixel that was asked for, or the one around the map point; empty when no pixel can be.
  std::optional<MapPoint> pixel;
  /// Empty when the grid has no position.
  std::optional<MapPoint> map;
  /// Empty outside the grid.
  std::optional<double> value;
  bool isNoData = false;
};

/// All that is told about a grid.
struct GridReport {
  GridFile file;
  /// These two say nothing when `file` has no grid.
  GridStatistics statistics;
  std::vector<GridAnswer> answers;
};

/// Throws Failure(exitInputUnreadable), and Failure(exitAnswerIsNo) when map points are asked of a
/// grid without a position.
GridReport MakeGridReport(const GridQuestions& questions);

}  // namespace rasterkit::tool
