#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// The colour 0x00BBGGRR that the host's style gives to a system colour: 0 to 30, in the numbering
/// that `TColor` uses (5 window, 8 text of windows, 13 selection, 15 face of buttons, ...). Black
/// for an index that names no colour. Needs a QApplication.
RASTERKIT_EXPORT uint32_t SystemColor(uint32_t index);

}  // namespace rasterkit
