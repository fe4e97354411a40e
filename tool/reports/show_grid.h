#pragma once

#include "tool/reports/grid_report.h"

namespace rasterkit::tool {

/// Prints a summary of the grid of a GeoTIFF: size, type, range, mean, the value for "no data",
/// position, and the requested values. Returns exitDone, or exitAnswerIsNo if the file has no grid
/// or a point is outside. Throws the Failures of MakeGridReport.
int ShowGrid(const GridQuestions& questions);

}  // namespace rasterkit::tool
