#include "tests/dialogs/gallery/form_controls.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QGroupBox>
#include <QLabel>

namespace rasterkit::test {

std::string NameOf(const QWidget& widget) {
  const QString name = widget.objectName();
  return (name.isEmpty() ? QString(widget.metaObject()->className()) : name).toStdString();
}

/// The visible widgets in a form, except Qt's internal ones.
QList<const QWidget*> Controls(const QWidget& form) {
  QList<const QWidget*> controls;
  for (const QWidget* widget : form.findChildren<QWidget*>()) {
    if (widget->isVisible() && !widget->objectName().startsWith("qt_")) controls += widget;
  }
  return controls;
}

QList<const QWidget*> KeyboardControls(const QWidget& form) {
  QList<const QWidget*> controls = Controls(form);
  controls.removeIf([](const QWidget* widget) {
    return (widget->focusPolicy() & Qt::TabFocus) == 0 || widget->focusProxy() != nullptr;
  });
  return controls;
}

QString TextOf(const QWidget& widget) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) return label->text();
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) return button->text();
  if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) return group->title();
  if (const auto* number = qobject_cast<const QAbstractSpinBox*>(&widget)) return number->text();
  return {};
}

}  // namespace rasterkit::test
