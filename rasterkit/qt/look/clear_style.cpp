#include <QAbstractItemView>
#include <QApplication>
#include <QFrame>
#include <QGroupBox>
#include <QHash>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOption>
#include <algorithm>
#include <cmath>

#include <rasterkit/qt/look/clear_style.h>
#include <rasterkit/qt/look/contrast.h>

namespace rasterkit::detail {
namespace {

/// Fusion lightens some outlines by up to a tenth of the given color.
constexpr double kOutlineContrast = 3.7, kFocusContrast = 4.5;
constexpr int kFocusWidth = 2;
/// Percentage by which Fusion darkens the window's color for outlines.
constexpr int kDarkening = 140;
/// Percentage by which Fusion darkens the selection's color for the outline of the default button.
constexpr int kDarkeningOfDefault = 125;
/// Percentage of the color at the lightest end of a button's gradient.
constexpr int kSheen = 160;
constexpr double kFillContrast = 3.6;

/// Always the Active group: outlines do not depend on the control's state.
QColor ColorIn(const QPalette& palette, QPalette::ColorRole role) {
  return palette.color(QPalette::Active, role);
}

QColor OutlineColor(const QPalette& palette) {
  const QColor window = ColorIn(palette, QPalette::Window);
  return WithContrast(window, ColorIn(palette, QPalette::WindowText),
                      {window, ColorIn(palette, QPalette::Base)}, kOutlineContrast);
}

QColor FocusColor(const QPalette& palette) {
  return WithContrast(ColorIn(palette, QPalette::Highlight), ColorIn(palette, QPalette::WindowText),
                      {ColorIn(palette, QPalette::Window), ColorIn(palette, QPalette::Base),
                       ColorIn(palette, QPalette::Button).lighter(kSheen)},
                      kFocusContrast);
}

/// Returns the color of the filled part of a track bar and of the default button's outline.
QColor HighlightColor(const QPalette& palette) {
  const QColor color = ColorIn(palette, QPalette::Highlight);
  const QColor window = ColorIn(palette, QPalette::Window);
  const QColor text = ColorIn(palette, QPalette::WindowText);
  if (window.lightness() > text.lightness()) return color;
  return WithContrast(color, text, {window.lighter(kDarkeningOfDefault)}, kFillContrast)
      .lighter(kDarkeningOfDefault);
}

/// Draws a frame of whole widget pixels along the edge.
void DrawFrame(QPainter& painter, const QRect& place, const QColor& color, int width) {
  if (place.width() <= 2 * width || place.height() <= 2 * width) return;
  const QRect inner = place.adjusted(width, width, -width, -width);
  for (const QRect& strip : {QRect(place.left(), place.top(), place.width(), width),
                             QRect(place.left(), inner.bottom() + 1, place.width(), width),
                             QRect(place.left(), inner.top(), width, inner.height()),
                             QRect(inner.right() + 1, inner.top(), width, inner.height())}) {
    painter.fillRect(strip, color);
  }
}

/// Draws the outline on whole pixels of the screen. At fractional scales Fusion's lines are between
/// two pixels and only half as strong.
void SharpenOutline(const QStyleOption& option, QPainter& painter, const QRect& place) {
  const double scale = painter.device()->devicePixelRatioF();
  if (scale != std::floor(scale)) DrawFrame(painter, place, OutlineColor(option.palette), 1);
}

bool IsPopup(const QWidget* widget) {
  return widget != nullptr && widget->window()->windowType() == Qt::Popup;
}

bool IsList(const QWidget* widget) {
  return qobject_cast<const QAbstractItemView*>(widget) != nullptr;
}

class ClearStyle : public QProxyStyle {
 public:
  ClearStyle() : QProxyStyle(QStringLiteral("fusion")) {}

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    switch (element) {
      case PE_FrameFocusRect:
        return DrawFocusRect(*option, *painter, widget);
      case PE_FrameGroupBox:
        return DrawGroupFrame(*option, *painter, widget);
      case PE_Frame:
        return DrawPanelFrame(*option, *painter, widget);
      case PE_FrameLineEdit:
        DrawOutlined(*option, [&](const QStyleOption& clear) {
          QProxyStyle::drawPrimitive(element, &clear, painter, widget);
        });
        SharpenOutline(*option, *painter, option->rect);
        return ShowFocus(*option, *painter);
      case PE_PanelButtonCommand:
        DrawOutlined(*option, [&](const QStyleOption& clear) {
          QProxyStyle::drawPrimitive(element, &clear, painter, widget);
        });
        SharpenButton(*option, *painter);
        return ShowFocusOfKeys(*option, *painter);
      case PE_IndicatorCheckBox:
        DrawOutlined(*option, [&](const QStyleOption& clear) {
          QProxyStyle::drawPrimitive(element, &clear, painter, widget);
        });
        return SharpenOutline(*option, *painter, option->rect);
      case PE_IndicatorRadioButton:
        return DrawOutlined(*option, [&](const QStyleOption& clear) {
          QProxyStyle::drawPrimitive(element, &clear, painter, widget);
        });
      default:
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
  }

  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override {
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (element == CE_ShapedFrame && frame != nullptr && frame->frameShape == QFrame::Panel) {
      return DrawFrame(*painter, option->rect, OutlineColor(option->palette), 1);
    }
    if (element != CE_ProgressBarGroove) {
      return QProxyStyle::drawControl(element, option, painter, widget);
    }
    DrawOutlined(*option, [&](const QStyleOption& clear) {
      QProxyStyle::drawControl(element, &clear, painter, widget);
    });
  }

  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                          QPainter* painter, const QWidget* widget) const override {
    const bool isField = control == CC_SpinBox || control == CC_ComboBox;
    if (!isField && control != CC_Slider) {
      return QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
    DrawOutlined(*option, [&](const QStyleOption& clear) {
      QProxyStyle::drawComplexControl(control, static_cast<const QStyleOptionComplex*>(&clear),
                                      painter, widget);
    });
    if (isField) {
      SharpenOutline(*option, *painter, option->rect);
      return ShowFocus(*option, *painter);
    }
    DrawKnob(*option, *painter, widget);
    ShowFocusOfKeys(*option, *painter);
  }

 private:
  /// Lets Fusion draw with a palette that gives visible outlines. The option is Qt's, of a type
  /// that only the caller knows, so its palette is replaced temporarily.
  template <typename Draw>
  void DrawOutlined(const QStyleOption& option, const Draw& draw) const {
    auto& lent = const_cast<QStyleOption&>(option);
    const QPalette before = lent.palette;
    lent.palette = OutlinedPalette(before);
    draw(lent);
    lent.palette = before;
  }

  /// Cached, because Fusion caches its drawings by palette.
  QPalette OutlinedPalette(const QPalette& palette) const {
    constexpr qsizetype kMost = 64;
    const auto found = outlined_.constFind(palette.cacheKey());
    if (found != outlined_.constEnd()) return *found;
    if (outlined_.size() >= kMost) outlined_.clear();
    QPalette outlined = palette;
    const QColor highlight = HighlightColor(palette);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
      outlined.setColor(group, QPalette::Window, OutlineColor(palette).lighter(kDarkening));
      if (group != QPalette::Disabled) outlined.setColor(group, QPalette::Highlight, highlight);
    }
    return outlined_[palette.cacheKey()] = outlined;
  }

  /// Draws the outline of the knob; Fusion's is as pale as the groove.
  void DrawKnob(const QStyleOptionComplex& option, QPainter& painter, const QWidget* widget) const {
    if (!(option.subControls & SC_SliderHandle) || !(option.state & State_Enabled)) return;
    const QRectF knob = proxy()->subControlRect(CC_Slider, &option, SC_SliderHandle, widget);
    constexpr double kInset = 1.5, kHalf = 0.5, kRoundness = 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(OutlineColor(option.palette));
    painter.setBrush(Qt::NoBrush);
    // Fusion's knob is slightly higher than the track bar.
    const QRectF seen = QRectF(option.rect).adjusted(kHalf, kHalf, -kHalf, -kHalf);
    painter.drawRoundedRect(knob.adjusted(kInset, kInset, -kInset, -kInset) & seen, kRoundness,
                            kRoundness);
    painter.restore();
    SharpenOutline(option, painter, knob.adjusted(1, 1, -1, -1).toRect() & option.rect);
  }

  static void ShowFocus(const QStyleOption& option, QPainter& painter) {
    if (option.state & State_HasFocus) {
      DrawFrame(painter, option.rect, FocusColor(option.palette), kFocusWidth);
    }
  }

  /// The outline of the default button has its own color with enough contrast.
  static void SharpenButton(const QStyleOption& option, QPainter& painter) {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    constexpr auto kOthers = QStyleOptionButton::Flat | QStyleOptionButton::DefaultButton;
    if (button != nullptr && !(button->features & kOthers)) {
      SharpenOutline(option, painter, option.rect);
    }
  }

  /// Fusion only colors the outline of buttons and knobs.
  static void ShowFocusOfKeys(const QStyleOption& option, QPainter& painter) {
    if (option.state & State_KeyboardFocusChange) ShowFocus(option, painter);
  }

  /// A control that got the focus from the mouse has no frame until a key is used.
  static void DrawFocusRect(const QStyleOption& option, QPainter& painter, const QWidget* widget) {
    if (!(option.state & State_KeyboardFocusChange)) return;
    DrawFrame(painter, option.rect, FocusColor(option.palette), kFocusWidth);
    // A second line is visible on a picture of the frame's own color.
    if (widget == nullptr || !widget->inherits("rasterkit::TPaintBox")) return;
    const int inset = kFocusWidth;
    DrawFrame(painter, option.rect.adjusted(inset, inset, -inset, -inset),
              ColorIn(option.palette, QPalette::Window), 1);
  }

  void DrawGroupFrame(const QStyleOption& option, QPainter& painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(PE_FrameGroupBox, &option, &painter, widget);
    // Below the title, like the base class draws its frame.
    constexpr int kGap = 3;
    const auto* group = qobject_cast<const QGroupBox*>(widget);
    const bool hasTitle = group == nullptr || group->isCheckable() || !group->title().isEmpty();
    const int title = hasTitle ? std::max(proxy()->pixelMetric(PM_IndicatorHeight, &option, widget),
                                          option.fontMetrics.height())
                               : 0;
    DrawFrame(painter, option.rect.adjusted(0, title + kGap, 0, 0), OutlineColor(option.palette),
              1);
  }

  void DrawPanelFrame(const QStyleOption& option, QPainter& painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(PE_Frame, &option, &painter, widget);
    if (IsPopup(widget)) return;
    const bool isList = IsList(widget);
    // A list with margins around its rows shows its focus there.
    if (isList)
      DrawFrame(painter, option.rect, ColorIn(option.palette, QPalette::Base), kFocusWidth);
    DrawFrame(painter, option.rect, OutlineColor(option.palette), 1);
    if (isList && widget->hasFocus()) {
      DrawFrame(painter, option.rect, FocusColor(option.palette), kFocusWidth);
    }
  }

  mutable QHash<qint64, QPalette> outlined_;
};

/// One style for all windows, owned by the application.
QStyle& SharedClearStyle() {
  const QString name = QStringLiteral("rasterkit-clear-style");
  if (auto* style = qApp->findChild<QStyle*>(name, Qt::FindDirectChildrenOnly)) return *style;
  QStyle* style = NewClearStyle().release();
  style->setObjectName(name);
  style->setParent(qApp);
  return *style;
}

}  // namespace

std::unique_ptr<QStyle> NewClearStyle() {
  return std::make_unique<ClearStyle>();
}

void UseClearStyle(QWidget& window) {
  const bool isFusion = QApplication::style()->name() == u"fusion";
  QStyle* style = isFusion ? &SharedClearStyle() : nullptr;
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    // A style that was set on this widget alone is kept.
    const bool isOwn = widget->testAttribute(Qt::WA_SetStyle) &&
                       dynamic_cast<ClearStyle*>(widget->style()) == nullptr;
    if (!isOwn && widget->testAttribute(Qt::WA_SetStyle) != isFusion) widget->setStyle(style);
  }
}

}  // namespace rasterkit::detail
