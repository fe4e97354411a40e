#include "tests/dialogs/gallery/contrast_rules.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHash>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionSlider>
#include <algorithm>

#include <rasterkit/qt/controls/navigator.h>

#include "tests/dialogs/gallery/form_controls.h"
#include "tests/support/forms/color_contrast.h"

namespace rasterkit::test {
namespace {

using Faults = std::vector<std::string>;

constexpr double kText = 4.5, kShape = 3;

std::string Rounded(double contrast) {
  return QString::number(contrast, 'f', 2).toStdString();
}

/// A photograph of a form, addressed in widget pixels.
class Photograph {
 public:
  explicit Photograph(QWidget& form) : form_(form), image_(form.grab().toImage()) {}

  /// `rect` of a widget in pixels of the photograph, clipped to it.
  QRect Place(const QWidget& widget, const QRect& rect) const {
    const QPoint corner = widget.mapTo(&form_, rect.topLeft());
    const double scale = image_.devicePixelRatio();
    const QRectF scaled(QPointF(corner) * scale, QSizeF(rect.size()) * scale);
    return scaled.toAlignedRect() & image_.rect();
  }
  double Scale() const { return image_.devicePixelRatio(); }
  bool Holds(const QPoint& point) const { return image_.rect().contains(point); }
  QColor At(const QPoint& point) const { return image_.pixelColor(point); }

  /// The most frequent color of an area.
  QColor Ground(const QRect& place) const {
    QHash<QRgb, int> counts;
    QRgb most = 0;
    int best = 0;
    for (int y = place.top(); y <= place.bottom(); ++y) {
      for (int x = place.left(); x <= place.right(); ++x) {
        const QRgb color = image_.pixel(x, y);
        const int count = ++counts[color];
        if (count <= best) continue;
        best = count;
        most = color;
      }
    }
    return most;
  }

  /// The best contrast to the background within an area.
  double Strongest(const QRect& place) const {
    const QColor ground = Ground(place);
    QRgb last = ground.rgb();
    double best = 1;
    for (int y = place.top(); y <= place.bottom(); ++y) {
      for (int x = place.left(); x <= place.right(); ++x) {
        const QRgb color = image_.pixel(x, y);
        if (color == last) continue;
        last = color;
        best = std::max(best, Contrast(QColor(color), ground));
      }
    }
    return best;
  }

  /// The best contrast that two pixels have to each other on a way from `start`, which lies
  /// outside, in steps of a pixel.
  double OnTheWay(QPoint start, const QPoint& step, int steps) const {
    if (!Holds(start)) return 21;
    std::vector<QColor> met;
    for (int i = 0; i < steps && Holds(start); ++i, start += step) met.push_back(At(start));
    double best = 1;
    for (const QColor& a : met)
      for (const QColor& b : met) best = std::max(best, Contrast(a, b));
    return best;
  }

 private:
  QWidget& form_;
  const QImage image_;
};

/// The sides of an outline, each as the way into it.
struct Side {
  const char* name;
  QPoint step;
};
constexpr Side kTop{"top", {0, 1}}, kLeft{"left", {1, 0}}, kBottom{"bottom", {0, -1}},
    kRight{"right", {-1, 0}};

/// The contrast of the faintest side: what one meets on the way from outside into the middle of it.
double Outline(const Photograph& photograph, const QRect& place, const std::vector<Side>& sides) {
  const int before = qRound(2 * photograph.Scale()), depth = qRound(6 * photograph.Scale());
  double faintest = 21;
  for (const Side& side : sides) {
    QPoint start = place.center();
    if (side.step.x() > 0) start.setX(place.left() - before);
    if (side.step.x() < 0) start.setX(place.right() + before);
    if (side.step.y() > 0) start.setY(place.top() - before);
    if (side.step.y() < 0) start.setY(place.bottom() + before);
    faintest = std::min(faintest, photograph.OnTheWay(start, side.step, depth));
  }
  return faintest;
}

QRect KnobOf(const QSlider& slider) {
  QStyleOptionSlider option;
  option.initFrom(&slider);
  option.orientation = slider.orientation();
  option.minimum = slider.minimum();
  option.maximum = slider.maximum();
  option.tickPosition = slider.tickPosition();
  option.tickInterval = slider.tickInterval();
  option.sliderPosition = slider.sliderPosition();
  option.sliderValue = slider.value();
  option.subControls = QStyle::SC_All;
  return slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle,
                                        &slider);
}

QRect IndicatorOf(const QCheckBox& box) {
  QStyleOptionButton option;
  option.initFrom(&box);
  return box.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &box);
}

bool IsFramed(const QWidget& widget) {
  if (const auto* edit = qobject_cast<const QLineEdit*>(&widget)) {
    const bool isInner = qobject_cast<const QAbstractSpinBox*>(edit->parentWidget()) != nullptr ||
                         qobject_cast<const QComboBox*>(edit->parentWidget()) != nullptr;
    return edit->hasFrame() && !isInner;
  }
  if (qobject_cast<const QAbstractSpinBox*>(&widget) != nullptr) return true;
  if (qobject_cast<const QComboBox*>(&widget) != nullptr) return true;
  const auto* button = qobject_cast<const QPushButton*>(&widget);
  if (button != nullptr) return !button->isFlat();
  const auto* frame = qobject_cast<const QFrame*>(&widget);
  if (frame == nullptr || qobject_cast<const QLabel*>(&widget) != nullptr) return false;
  // A line between groups has no outline.
  const QFrame::Shape shape = frame->frameShape();
  return shape != QFrame::NoFrame && shape != QFrame::VLine && shape != QFrame::HLine;
}

/// The contrast of a widget's outline; 21 if it has none.
double OutlineOf(const Photograph& photograph, const QWidget& widget) {
  const std::vector<Side> all = {kTop, kLeft, kBottom, kRight};
  const QRect place = photograph.Place(widget, widget.rect());
  if (qobject_cast<const QGroupBox*>(&widget) != nullptr)
    return Outline(photograph, place, {kLeft, kBottom, kRight});
  if (const auto* slider = qobject_cast<const QSlider*>(&widget))
    return Outline(photograph, photograph.Place(*slider, KnobOf(*slider)), {kTop});
  if (const auto* box = qobject_cast<const QCheckBox*>(&widget))
    return Outline(photograph, photograph.Place(*box, IndicatorOf(*box)), all);
  // The buttons of a compact bar share the outlines between them.
  const auto* bar = qobject_cast<const TNavigator*>(widget.parentWidget());
  if (bar != nullptr && bar->isCompact()) return Outline(photograph, place, {kTop, kBottom});
  return IsFramed(widget) ? Outline(photograph, place, all) : 21;
}

/// The width of an outline; on a gradient its color would be the most frequent one.
QMargins InsideOutline(const QWidget& widget) {
  const bool isButton = qobject_cast<const QPushButton*>(&widget) != nullptr;
  return IsFramed(widget) || isButton ? QMargins(4, 4, 4, 4) : QMargins();
}

/// The part of a drawing with enough contrast to the background, 0 to 1.
double SeenShare(const QImage& drawing, const QColor& ground) {
  int drawn = 0, seen = 0;
  for (int y = 0; y < drawing.height(); ++y) {
    for (int x = 0; x < drawing.width(); ++x) {
      const QColor color = drawing.pixelColor(x, y);
      if (color.alphaF() < 0.8F) continue;
      ++drawn;
      seen += Contrast(color, ground) >= kShape ? 1 : 0;
    }
  }
  return drawn == 0 ? 0 : static_cast<double>(seen) / drawn;
}

int ChangedPixels(const QImage& with, const QImage& without) {
  int changed = 0;
  for (int y = 0; y < with.height(); ++y) {
    for (int x = 0; x < with.width(); ++x) {
      if (with.pixel(x, y) == without.pixel(x, y)) continue;
      changed += Contrast(with.pixelColor(x, y), without.pixelColor(x, y)) >= kShape ? 1 : 0;
    }
  }
  return changed;
}

}  // namespace

Faults FaintTexts(QWidget& form) {
  Faults faults;
  const Photograph photograph(form);
  for (const QWidget* widget : Controls(form)) {
    const QString text = TextOf(*widget);
    // Dots are too small to be measured.
    const bool isRead = std::any_of(text.begin(), text.end(),
                                    [](QChar character) { return character.isLetterOrNumber(); });
    if (!isRead || !widget->isEnabled()) continue;
    const QRect inner = widget->rect() - InsideOutline(*widget);
    const double contrast = photograph.Strongest(photograph.Place(*widget, inner));
    if (contrast < kText) faults.push_back(NameOf(*widget) + "'s text has " + Rounded(contrast));
  }
  return faults;
}

Faults FaintFrames(QWidget& form) {
  Faults faults;
  const Photograph photograph(form);
  for (const QWidget* widget : Controls(form)) {
    if (!widget->isEnabled()) continue;
    const double contrast = OutlineOf(photograph, *widget);
    if (contrast < kShape)
      faults.push_back(NameOf(*widget) + "'s outline has " + Rounded(contrast));
  }
  return faults;
}

Faults FaintIcons(QWidget& form) {
  Faults faults;
  // Its frame is not a background.
  if (QWidget* focus = form.focusWidget()) focus->clearFocus();
  const Photograph photograph(form);
  for (const QAbstractButton* button : form.findChildren<QAbstractButton*>()) {
    if (button->icon().isNull() || !button->isVisible() || !button->isEnabled()) continue;
    // Between outline and focus.
    const QRect spot(2, button->height() / 2, 1, 1);
    const QColor ground = photograph.At(photograph.Place(*button, spot).center());
    const double share = SeenShare(button->icon().pixmap(button->iconSize() * 4).toImage(), ground);
    if (share < 0.5)
      faults.push_back(NameOf(*button) + "'s drawing is seen to " + Rounded(100 * share) + " %");
  }
  return faults;
}

Faults FaintFocus(QWidget& form) {
  Faults faults;
  // As from the first key on.
  form.setAttribute(Qt::WA_KeyboardFocusChange);
  for (const QWidget* constant : KeyboardControls(form)) {
    auto* widget = const_cast<QWidget*>(constant);
    if (!widget->isEnabled()) continue;
    widget->setFocus(Qt::TabFocusReason);
    const QImage with = widget->grab().toImage();
    widget->clearFocus();
    const QImage without = widget->grab().toImage();
    // What the drawing of a focus has at least: the half of an outline of a small control.
    const double most = 60;
    const double outline = std::min<double>(widget->width(), most) + widget->height();
    const int changed = ChangedPixels(with, without);
    if (changed < outline * with.devicePixelRatio())
      faults.push_back(NameOf(*widget) + "'s focus changes " + std::to_string(changed) + " pixels");
  }
  return faults;
}

}  // namespace rasterkit::test
