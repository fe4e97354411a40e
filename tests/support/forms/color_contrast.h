#pragma once

#include <QColor>
#include <algorithm>
#include <cmath>

namespace rasterkit::test {

/// Returns the ratio of the relative luminances of two colors, 1 to 21. Texts need 4.5, icons and
/// frames 3.
inline double Contrast(const QColor& a, const QColor& b) {
  const auto linear = [](double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  const auto luminance = [&](const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
  };
  const auto [darker, brighter] = std::minmax({luminance(a), luminance(b)});
  return (brighter + 0.05) / (darker + 0.05);
}

}  // namespace rasterkit::test
