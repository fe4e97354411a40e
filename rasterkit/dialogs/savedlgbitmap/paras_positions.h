#pragma once

#include <cstdint>

/// Entries of the lists in the settings window, counted from 0. -1 means no selection.
namespace rasterkit {

/// Returns the graphic type of an entry: 1, 6, 8, 10; PNG for any other position.
int32_t GraphicTypeAt(int position);
/// Returns the entry of a graphic type; that of PNG for any other type.
int PositionOfGraphicType(int32_t type);

/// Returns the bits per pixel of an entry: 1, 4, 8, 24; 24 for any other position.
int32_t ColorDepthAt(int position);
/// Returns the entry of a bit depth; that of 24 for any other number.
int PositionOfColorDepth(int32_t bits);

}  // namespace rasterkit
