#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tool/pictures/placement/grid_file.h"

namespace rasterkit::tool {

struct GridQuestions {
  std::string file;
  /// Columns and rows, counted from 0 at the top left.
  std::vector<MapPoint> pixels;
  std::vector<MapPoint> mapPoints;
  bool json = false;
};

/// The value at one point.
struct GridAnswer {
  /// The requested pixel, or the one at the map point; empty if the point has no pixel.
  std::optional<MapPoint> pixel;
  /// Empty if the grid has no position.
  std::optional<MapPoint> map;
  /// One for each band; empty if the point is outside the grid.
  std::vector<GridNumber> values;
  /// Of the first band.
  bool isNoData = false;
};

/// Everything that is reported about a grid.
struct GridReport {
  GridFile file;
  /// One for each band; empty if `file` has no grid.
  std::vector<GridStatistics> statistics;
  std::vector<GridAnswer> answers;
};

/// Reads the grid and its values. Throws Failure(exitInputUnreadable), and Failure(exitAnswerIsNo)
/// if map points are requested from a grid without a position.
GridReport MakeGridReport(const GridQuestions& questions);

}  // namespace rasterkit::tool
