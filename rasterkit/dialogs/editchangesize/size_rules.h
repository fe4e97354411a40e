#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace rasterkit {

/// How a window that changes the size works. Plain data for the constructor of ChangeSizeModel.
struct SizeRules {
  /// Sides of the result in pixels.
  double leastSide = 0, greatestSide = std::numeric_limits<int32_t>::max();
  /// Sides out of range, and a result beyond the memory limit, are refused with the reason. Else
  /// sides go to the nearest limit and memory is not looked at.
  bool refusesWrongSizes = false;
  /// OK needs a result that differs from the start.
  bool needsChange = false;
  /// Changes that can be undone; 0: none.
  size_t mostUndoSteps = 0;
};

/// Those of EditSize.
inline constexpr SizeRules kEntrySizeRules{};

/// Those of ChooseSize.
inline constexpr SizeRules kEditorSizeRules{
    .leastSide = 1,
    .greatestSide = 1'000'000,
    .refusesWrongSizes = true,
    .needsChange = true,
    .mostUndoSteps = 256,
};

}  // namespace rasterkit
