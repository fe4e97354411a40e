#include <algorithm>
#include <cmath>

#include <rasterkit/qt/look/contrast.h>

namespace rasterkit::detail {
namespace {

/// Linearizes a channel of the sRGB color space, 0 to 1.
double Linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& color) {
  return 0.2126 * Linear(color.redF()) + 0.7152 * Linear(color.greenF()) +
         0.0722 * Linear(color.blueF());
}

QColor Mix(const QColor& a, const QColor& b, double partOfB) {
  const auto channel = [&](float ofA, float ofB) {
    return static_cast<float>(ofA + (ofB - ofA) * partOfB);
  };
  return QColor::fromRgbF(channel(a.redF(), b.redF()), channel(a.greenF(), b.greenF()),
                          channel(a.blueF(), b.blueF()));
}

}  // namespace

double Contrast(const QColor& a, const QColor& b) {
  const auto [darker, brighter] = std::minmax({Luminance(a), Luminance(b)});
  return (brighter + 0.05) / (darker + 0.05);
}

QColor WithContrast(const QColor& color, const QColor& towards,
                    std::initializer_list<QColor> grounds, double least) {
  constexpr int kSteps = 50;
  for (int i = 0; i < kSteps; ++i) {
    const QColor mixed = Mix(color, towards, static_cast<double>(i) / kSteps);
    const bool isSeen = std::all_of(grounds.begin(), grounds.end(), [&](const QColor& ground) {
      return Contrast(mixed, ground) >= least;
    });
    if (isSeen) return mixed;
  }
  return towards;
}

}  // namespace rasterkit::detail
