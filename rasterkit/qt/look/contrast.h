#pragma once

#include <QColor>
#include <initializer_list>

namespace rasterkit::detail {

/// Returns the contrast of two colors, 1 (none) to 21 (black and white), as accessibility
/// guidelines define it: the ratio of their relative luminances.
double Contrast(const QColor& a, const QColor& b);

/// Returns `color` mixed with the least amount of `towards` that gives it a contrast of `least` to
/// each of the backgrounds; `towards` itself if nothing less suffices.
QColor WithContrast(const QColor& color, const QColor& towards,
                    std::initializer_list<QColor> grounds, double least);

}  // namespace rasterkit::detail
