#pragma once

#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {

/// Resolves a color to 0x00BBGGRR; a negative value names one of the host's system colors.
inline TColor ResolveColor(TColor color) {
  if (color >= 0) return color & 0xFFFFFF;
  return static_cast<TColor>(GetSysColor(static_cast<uint32_t>(color) & 0xFFFFFF) & 0xFFFFFF);
}

}  // namespace rasterkit
