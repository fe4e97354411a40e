#pragma once

#include <QPalette>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// True for colours of light text on a dark ground; icons come in two drawings and go by this.
RASTERKIT_EXPORT bool IsDark(const QPalette& palette);

/// Neutral greys with a blue selection; every text has a contrast of at least 4.5 to 1 to its
/// ground, disabled ones excepted.
RASTERKIT_EXPORT QPalette LightPalette();
RASTERKIT_EXPORT QPalette DarkPalette();

/// Gives the application a palette. Where its style is Fusion, which draws outlines a shade darker
/// than the window, outlines and focus then are strong enough to be seen (3 to 1).
RASTERKIT_EXPORT void UsePalette(const QPalette& palette);

}  // namespace rasterkit
