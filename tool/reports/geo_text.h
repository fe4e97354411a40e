#pragma once

#include <string>

#include <rasterkit/placement/placement.h>

namespace rasterkit::tool {

/// Describes a position in one line: "world file a.tfw: pixel 0,0 has its center at 10,20; one
/// column on adds 2,0, one row down adds 0,-2".
std::string PositionText(const StatedPosition& position);

}  // namespace rasterkit::tool
