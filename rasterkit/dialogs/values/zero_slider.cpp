#include <QPainter>
#include <QStyleOptionSlider>
#include <algorithm>

#include <rasterkit/dialogs/values/zero_slider.h>
#include <rasterkit/qt/look/contrast.h>

namespace rasterkit {
namespace {

constexpr int kThickness = 4;
constexpr double kFillContrast = 3.2;

}  // namespace

ZeroSlider::ZeroSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {}

int ZeroSlider::CenterOfHandle(int value) const {
  QStyleOptionSlider option;
  initStyleOption(&option);
  option.sliderPosition = value;
  return style()
      ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this)
      .center()
      .x();
}

QRect ZeroSlider::FilledPart() const {
  QStyleOptionSlider option;
  initStyleOption(&option);
  const QRect groove =
      style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
  const int from = CenterOfHandle(std::clamp(0, minimum(), maximum()));
  const int to = CenterOfHandle(sliderPosition());
  const int top = groove.center().y() - kThickness / 2 + 1;
  return {std::min(from, to), top, std::abs(to - from), kThickness};
}

void ZeroSlider::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QStyleOptionSlider option;
  initStyleOption(&option);
  const int position = option.sliderPosition;
  option.subControls = QStyle::SC_SliderGroove;
  if (tickPosition() != NoTicks) option.subControls |= QStyle::SC_SliderTickmarks;
  // Styles fill the groove up to the handle.
  option.sliderPosition = minimum();
  style()->drawComplexControl(QStyle::CC_Slider, &option, &painter, this);
  const QPalette& colors = palette();
  const QColor fill = detail::WithContrast(
      colors.color(QPalette::Highlight), colors.color(QPalette::WindowText),
      {colors.color(QPalette::Window), colors.color(QPalette::Base)}, kFillContrast);
  if (isEnabled()) painter.fillRect(FilledPart(), fill);
  option.subControls = QStyle::SC_SliderHandle;
  option.sliderPosition = position;
  if (isSliderDown()) {
    option.activeSubControls = QStyle::SC_SliderHandle;
    option.state |= QStyle::State_Sunken;
  }
  style()->drawComplexControl(QStyle::CC_Slider, &option, &painter, this);
}

}  // namespace rasterkit
