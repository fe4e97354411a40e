#pragma once

#include <cstdint>

/// Entries of the lists in the settings window, counted from 0. Nothing selected counts as -1.
namespace rasterkit {

/// The graphic type of an entry: 1, 6, 8, 10; any other position is PNG.
int32_t GraphicTypeAt(int position);
/// The entry of a graphic type; any other type stands with PNG.
int PositionOfGraphicType(int32_t type);

/// The bits a pixel of an entry: 1, 4, 8, 24; any other position is 24.
int32_t ColorDepthAt(int position);
/// The entry of a number of bits; any other number stands with 24.
int PositionOfColorDepth(int32_t bits);

}  // namespace rasterkit
