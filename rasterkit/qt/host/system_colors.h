#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Returns the color 0x00BBGGRR that the host's style has for a system color: 0 to 30, numbered as
/// in `TColor` (5 window, 8 window text, 13 selection, 15 button face, ...). Black for an invalid
/// index. Requires a QApplication.
RASTERKIT_EXPORT uint32_t SystemColor(uint32_t index);

}  // namespace rasterkit
