#pragma once

#include <QColor>

#include <rasterkit/graphics/system_color.h>

/// Converts between TColor and QColor.
namespace rasterkit {

/// Converts a color; system colors are resolved with the colors of the host.
inline QColor QtColor(TColor color) {
  const TColor bgr = ResolveColor(color);
  return QColor(bgr & 0xFF, bgr >> 8 & 0xFF, bgr >> 16 & 0xFF);
}

/// Converts a color without its alpha.
inline TColor ColorOf(const QColor& color) {
  return RGB(static_cast<uint8_t>(color.red()), static_cast<uint8_t>(color.green()),
             static_cast<uint8_t>(color.blue()));
}

}  // namespace rasterkit
