#include "tests/dialogs/gallery/form_rules.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QMap>

#include "tests/dialogs/gallery/form_controls.h"

namespace rasterkit::test {
namespace {

QSize WantedSize(const QWidget& widget) {
  if (qobject_cast<const QGroupBox*>(&widget) != nullptr) return widget.minimumSizeHint();
  const auto* label = qobject_cast<const QLabel*>(&widget);
  if (label == nullptr || !label->wordWrap()) return widget.sizeHint();
  return {0, label->heightForWidth(label->width())};
}

bool IsTooSmall(const QWidget& widget) {
  const QSize wanted = WantedSize(widget);
  return widget.width() < wanted.width() || widget.height() < wanted.height();
}

std::string Describe(const QWidget& widget) {
  const QSize wanted = WantedSize(widget);
  return NameOf(widget) + " \"" + TextOf(widget).toStdString() + "\" is " +
         std::to_string(widget.width()) + " x " + std::to_string(widget.height()) + ", needs " +
         std::to_string(wanted.width()) + " x " + std::to_string(wanted.height());
}

/// The text with the mnemonic of this control, or nothing.
QString MnemonicTextOf(const QWidget& widget) {
  const auto* label = qobject_cast<const QLabel*>(&widget);
  return label != nullptr && label->buddy() == nullptr ? QString() : TextOf(widget);
}

}  // namespace

std::vector<std::string> ClippedTexts(const QWidget& form) {
  std::vector<std::string> faults;
  for (const QWidget* widget : Controls(form)) {
    if (TextOf(*widget).isEmpty()) continue;
    if (IsTooSmall(*widget)) faults.push_back(Describe(*widget));
    if (!widget->parentWidget()->rect().contains(widget->geometry())) {
      faults.push_back(NameOf(*widget) + " juts out of " + NameOf(*widget->parentWidget()));
    }
  }
  return faults;
}

std::vector<std::string> NamelessControls(const QWidget& form) {
  std::vector<std::string> faults;
  for (const QWidget* widget : KeyboardControls(form)) {
    const auto* reader = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
    if (reader == nullptr || reader->text(QAccessible::Name).isEmpty()) {
      faults.push_back(NameOf(*widget));
    }
  }
  return faults;
}

std::vector<std::string> ControlsWithoutTip(const QWidget& form) {
  std::vector<std::string> faults;
  for (const QWidget* widget : KeyboardControls(form)) {
    const bool isInBox = qobject_cast<QDialogButtonBox*>(widget->parentWidget()) != nullptr;
    if (widget->toolTip().isEmpty() && !isInBox) faults.push_back(NameOf(*widget));
  }
  return faults;
}

std::vector<std::string> SharedMnemonics(const QWidget& form) {
  std::vector<std::string> faults;
  QMap<QKeySequence, const QWidget*> owners;
  for (const QWidget* widget : Controls(form)) {
    const QKeySequence key = QKeySequence::mnemonic(MnemonicTextOf(*widget));
    if (key.isEmpty()) continue;
    const QWidget*& owner = owners[key];
    if (owner != nullptr) {
      faults.push_back(NameOf(*owner) + " and " + NameOf(*widget) + " share " +
                       key.toString().toStdString());
    }
    owner = widget;
  }
  return faults;
}

}  // namespace rasterkit::test
