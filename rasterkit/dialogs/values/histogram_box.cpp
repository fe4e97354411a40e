#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include <rasterkit/dialogs/values/histogram_box.h>
#include <rasterkit/qt/look/contrast.h>

namespace rasterkit {
namespace {

constexpr double kLevels = 256;
/// Room below the plot for the mark.
constexpr int kMarkRoom = 9;
constexpr double kLineContrast = 3.0;

QPainterPath LineOf(const LevelCounts& counts, const HistogramBox& box, const QRectF& plot) {
  const std::array<double, 256> heights = BarHeights(counts);
  QPainterPath path;
  for (size_t level = 0; level < heights.size(); ++level) {
    const QPointF point(box.XOf(static_cast<double>(level) + 0.5),
                        plot.bottom() - heights[level] * plot.height());
    if (level == 0) {
      path.moveTo(point);
    } else {
      path.lineTo(point);
    }
  }
  return path;
}

}  // namespace

HistogramBox::HistogramBox(QWidget* parent) : TPaintBox(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  OnPaint = [this](TPaintBox&, QPainter& painter) { Paint(painter); };
  const auto move = [this](TPaintBox&, QMouseEvent& event) {
    if (!OnThreshold || !(event.buttons() & Qt::LeftButton)) return event.ignore();
    OnThreshold(LevelAt(event.position().x()));
  };
  OnMouseDown = move;
  OnMouseMove = move;
  OnMouseUp = [this](TPaintBox&, QMouseEvent&) {
    if (OnThresholdEnd) OnThresholdEnd();
  };
}

void HistogramBox::SetHistogram(const ValueHistogram& histogram, bool showsChannels) {
  histogram_ = histogram;
  showsChannels_ = showsChannels;
  update();
}

void HistogramBox::SetThreshold(std::optional<int> threshold) {
  threshold_ = threshold;
  update();
}

void HistogramBox::SetMark(std::optional<int> mark) {
  mark_ = mark;
  update();
}

QSize HistogramBox::sizeHint() const {
  return {258, 96};
}

QSize HistogramBox::minimumSizeHint() const {
  return {130, 64};
}

QRectF HistogramBox::Plot() const {
  return QRectF(rect()).adjusted(1, 2, -1, -(mark_ || threshold_ ? kMarkRoom : 1));
}

double HistogramBox::XOf(double level) const {
  const QRectF plot = Plot();
  const double offset = level / kLevels * plot.width();
  return isRightToLeft() ? plot.right() - offset : plot.left() + offset;
}

int HistogramBox::LevelAt(double x) const {
  const QRectF plot = Plot();
  const double offset = isRightToLeft() ? plot.right() - x : x - plot.left();
  return static_cast<int>(std::clamp(std::lround(offset / plot.width() * kLevels), 0L, 256L));
}

void HistogramBox::Paint(QPainter& painter) {
  const QPalette& colors = palette();
  const QColor base = colors.color(QPalette::Base), text = colors.color(QPalette::Text);
  const auto seen = [&](const QColor& color) {
    return detail::WithContrast(color, text, {base}, kLineContrast);
  };
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF plot = Plot();
  painter.fillRect(rect(), base);
  QPainterPath area = LineOf(histogram_.gray, *this, plot);
  area.lineTo(XOf(kLevels - 0.5), plot.bottom());
  area.lineTo(XOf(0.5), plot.bottom());
  area.closeSubpath();
  QColor fill = text;
  fill.setAlphaF(0.35F);
  painter.fillPath(area, fill);
  if (showsChannels_) {
    const std::pair<const LevelCounts*, QColor> channels[] = {
        {&histogram_.red, QColor(200, 40, 40)},
        {&histogram_.green, QColor(20, 140, 40)},
        {&histogram_.blue, QColor(40, 80, 220)}};
    for (const auto& [counts, color] : channels) {
      painter.strokePath(LineOf(*counts, *this, plot), QPen(seen(color), 1.2));
    }
  }
  if (mark_) {
    const double x = XOf(*mark_);
    painter.setPen(QPen(seen(text), 1, Qt::DashLine));
    painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    const QPointF triangle[] = {{x, plot.bottom() + 1},
                                {x - 5, plot.bottom() + kMarkRoom - 1},
                                {x + 5, plot.bottom() + kMarkRoom - 1}};
    painter.setPen(Qt::NoPen);
    painter.setBrush(text);
    painter.drawPolygon(triangle, 3);
  }
  if (threshold_) {
    const double x = XOf(*threshold_);
    painter.setPen(QPen(seen(colors.color(QPalette::Highlight)), 2));
    painter.drawLine(QPointF(x, plot.top()), QPointF(x, height() - 1));
  }
}

}  // namespace rasterkit
