#include "tests/support/user/user_script.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QKeySequence>
#include <QPointer>
#include <QTest>
#include <algorithm>
#include <csignal>
#include <iterator>

namespace rasterkit::test {
namespace {

QPoint PointOf(const QString& text) {
  return {text.section(QLatin1Char(','), 0, 0).toInt(),
          text.section(QLatin1Char(','), 1, 1).toInt()};
}

/// A window may be busy with what the step before has started.
bool BecomesUsable(QWidget* widget) {
  constexpr int kMilliseconds = 5000;
  const QPointer<QWidget> watched(widget);
  return watched &&
         QTest::qWaitFor([&] { return !watched || watched->isEnabled(); }, kMilliseconds) &&
         watched;
}

/// A window may do the step before on another thread.
bool BecomesIdle(const QWidget& window) {
  const QPointer<const QWidget> watched(&window);
  constexpr int kMilliseconds = 60000;
  return QTest::qWaitFor([&] { return !watched || !watched->property("isWorking").toBool(); },
                         kMilliseconds) &&
         watched;
}

bool Click(QWidget* widget) {
  if (!BecomesUsable(widget)) return false;
  QTest::mouseClick(widget, Qt::LeftButton);
  return true;
}

bool Type(QWidget* widget, const QString& text, Qt::Key last) {
  if (!BecomesUsable(widget)) return false;
  widget->setFocus();
  // A list would use the key for its search.
  const auto* const list = qobject_cast<QComboBox*>(widget);
  if (list == nullptr || list->isEditable())
    QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(widget, text);
  QTest::keyClick(widget, last);
  return true;
}

bool Drag(QWidget* widget, QPoint from, QPoint to) {
  if (widget == nullptr) return false;
  QTest::mousePress(widget, Qt::LeftButton, Qt::NoModifier, from);
  // QTest::mouseMove cannot hold a button.
  for (const QPoint& point : {(from + to) / 2, to}) {
    QMouseEvent move(QEvent::MouseMove, point, widget->mapToGlobal(point), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &move);
  }
  QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, to);
  return true;
}

bool Press(QWidget& window, const QString& key) {
  if (key != QLatin1String("Escape") && key != QLatin1String("Return")) return false;
  QTest::keyClick(&window, key == QLatin1String("Escape") ? Qt::Key_Escape : Qt::Key_Return);
  return true;
}

bool PressOn(QWidget* widget, const QString& key) {
  const QKeySequence keys(key);
  if (widget == nullptr || !widget->isEnabled() || keys.isEmpty()) return false;
  widget->setFocus();
  QTest::keyClick(widget, keys[0].key());
  return true;
}

const QLatin1String kOnWidgets[] = {QLatin1String("click"), QLatin1String("type"),
                                    QLatin1String("enter"), QLatin1String("drag"),
                                    QLatin1String("press")};

QStringList WordsOf(const QString& step) {
  return step.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QWidget* WidgetOf(const QWidget& window, const QString& name) {
  if (auto* const widget = window.findChild<QWidget*>(name)) return widget;
  for (QAbstractButton* const button : window.findChildren<QAbstractButton*>())
    if (button->text().remove(QLatin1Char('&')) == name) return button;
  return nullptr;
}

}  // namespace

bool CanDoStep(const QWidget& window, const QString& step) {
  const QStringList words = WordsOf(step);
  const auto isOne = [&](QLatin1String what) { return what == words.value(0); };
  if (std::none_of(std::begin(kOnWidgets), std::end(kOnWidgets), isOne)) return true;
  const QWidget* const widget = WidgetOf(window, words.value(1));
  return widget != nullptr && widget->isEnabled();
}

bool DoStep(QWidget& window, const QString& step) {
  const QStringList words = WordsOf(step);
  if (!BecomesIdle(window)) return false;
  const QString what = words.value(0);
  QWidget* const widget = WidgetOf(window, words.value(1));
  if (what == QLatin1String("click")) return Click(widget);
  if (what == QLatin1String("type")) return Type(widget, words.value(2), Qt::Key_Tab);
  if (what == QLatin1String("enter")) return Type(widget, words.value(2), Qt::Key_Return);
  if (what == QLatin1String("drag"))
    return Drag(widget, PointOf(words.value(2)), PointOf(words.value(3)));
  if (what == QLatin1String("press")) return PressOn(widget, words.value(2));
  if (what == QLatin1String("key")) return Press(window, words.value(1));
  if (what == QLatin1String("close")) return window.close();
  if (what == QLatin1String("interrupt")) return std::raise(SIGINT) == 0;
  return false;
}

}  // namespace rasterkit::test
