#pragma once

#include <QPalette>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// True if the palette has light text on a dark background; selects the variant of the icons.
RASTERKIT_EXPORT bool IsDark(const QPalette& palette);

/// Neutral grays with a blue selection; every text has a contrast of at least 4.5 to 1 to its
/// background, except disabled ones.
RASTERKIT_EXPORT QPalette LightPalette();
RASTERKIT_EXPORT QPalette DarkPalette();

/// Sets the palette of the application. If its style is Fusion, whose outlines are only a shade
/// darker than the window, outlines and focus become clearly visible (3 to 1).
RASTERKIT_EXPORT void UsePalette(const QPalette& palette);

}  // namespace rasterkit
