#pragma once

#include <QColor>
#include <initializer_list>

namespace rasterkit::detail {

/// How well two colours are told apart, 1 (not at all) to 21 (black and white), as guidelines for
/// accessible contents measure it: the ratio of their relative luminances.
double Contrast(const QColor& a, const QColor& b);

/// `color`, mixed with as little of `towards` as gives it a contrast of `least` to each of the
/// grounds; `towards` itself where nothing less does.
QColor WithContrast(const QColor& color, const QColor& towards,
                    std::initializer_list<QColor> grounds, double least);

}  // namespace rasterkit::detail
