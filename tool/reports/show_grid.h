#pragma once

#include "tool/reports/grid_report.h"

namespace rasterkit::tool {

/// Prints what the grid of a GeoTIFF holds: size, type, range, mean, the value for "no data",
/// position, and the values that were asked for. Returns exitDone, or exitAnswerIsNo when the file
/// holds no grid or a point lies outside. Throws Failure as MakeGridReport does.
int ShowGrid(const GridQuestions& questions);

}  // namespace rasterkit::tool
