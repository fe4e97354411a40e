#include "tests/dialogs/gallery/reader_rules.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QSlider>
#include <QToolButton>
#include <map>

#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/controls/paint_box.h>

#include "tests/dialogs/gallery/form_controls.h"

namespace rasterkit::test {
namespace {

using Faults = std::vector<std::string>;
using Node = QAccessibleInterface;

Node* NodeOf(const QWidget& widget) {
  return QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&widget));
}

QString Name(const Node& node) {
  return node.text(QAccessible::Name);
}

QString WithoutMnemonic(QString text) {
  return text.remove(u'&').trimmed();
}

/// What a control of this class must be to a reader; nothing for containers and the like.
QList<QAccessible::Role> RolesFor(const QWidget& widget) {
  if (qobject_cast<const QCheckBox*>(&widget)) return {QAccessible::CheckBox};
  if (qobject_cast<const QRadioButton*>(&widget)) return {QAccessible::RadioButton};
  if (qobject_cast<const QToolButton*>(&widget))
    return {QAccessible::Button, QAccessible::CheckBox, QAccessible::ButtonMenu};
  if (const auto* const button = qobject_cast<const QPushButton*>(&widget)) {
    if (!button->isCheckable()) return {QAccessible::Button};
    // One of several that exclude each other is a choice.
    return {button->autoExclusive() ? QAccessible::RadioButton : QAccessible::CheckBox};
  }
  if (qobject_cast<const QAbstractSpinBox*>(&widget)) return {QAccessible::SpinBox};
  if (qobject_cast<const QSlider*>(&widget)) return {QAccessible::Slider};
  if (qobject_cast<const QComboBox*>(&widget)) return {QAccessible::ComboBox};
  if (qobject_cast<const QLineEdit*>(&widget)) return {QAccessible::EditableText};
  if (qobject_cast<const QProgressBar*>(&widget)) return {QAccessible::ProgressBar};
  if (qobject_cast<const QGroupBox*>(&widget)) return {QAccessible::Grouping};
  if (qobject_cast<const QAbstractItemView*>(&widget))
    return {QAccessible::List, QAccessible::Table, QAccessible::Tree};
  if (qobject_cast<const QLabel*>(&widget))
    return {QAccessible::StaticText, QAccessible::Graphic, QAccessible::Link};
  if (qobject_cast<const TPaintBox*>(&widget)) return {QAccessible::Graphic};
  return {};
}

class Reader {
 public:
  explicit Reader(QWidget& form) : form_(form) {}

  Faults Read() {
    const Node* dialog = NodeOf(form_);
    if (dialog == nullptr) return {"no window to be read"};
    if (dialog->role() != QAccessible::Dialog && dialog->role() != QAccessible::AlertMessage)
      Fault(form_, "is no dialog");
    if (Name(*dialog).isEmpty()) Fault(form_, "has no title");
    for (const QWidget* widget : Controls(form_)) {
      // What a list consists of is the list's to tell.
      const bool isOfList =
          qobject_cast<const QAbstractItemView*>(widget->parentWidget()) != nullptr;
      if (!isOfList) ReadControl(*widget);
    }
    return faults_;
  }

 private:
  void Fault(const QWidget& widget, const std::string& what) {
    faults_.push_back(NameOf(widget) + " " + what);
  }

  void ReadControl(const QWidget& widget) {
    const QList<QAccessible::Role> roles = RolesFor(widget);
    if (roles.isEmpty()) return ReadUnknown(widget);
    Node* node = NodeOf(widget);
    if (node == nullptr) return Fault(widget, "is not there for readers");
    if (!roles.contains(node->role()))
      Fault(widget, "has the role " + std::to_string(node->role()));
    if (!Reaches(*node)) Fault(widget, "cannot be found from the window");
    ReadName(widget, *node);
    ReadStates(widget, *node);
    ReadValue(widget, *node);
    ReadActions(widget, *node);
  }

  /// An unknown class is accepted unless the control does something.
  void ReadUnknown(const QWidget& widget) {
    const bool takesKeys = (widget.focusPolicy() & Qt::TabFocus) != 0 && !widget.focusProxy();
    if (takesKeys) Fault(widget, "takes the keyboard, and a reader cannot tell what it is");
  }

  bool Reaches(const Node& node) const {
    const Node* window = NodeOf(form_);
    for (const Node* parent = node.parent(); parent != nullptr; parent = parent->parent())
      if (parent == window) return node.parent()->indexOfChild(&node) >= 0;
    return false;
  }

  void ReadName(const QWidget& widget, const Node& node) {
    const QString name = Name(node);
    const auto* label = qobject_cast<const QLabel*>(&widget);
    if (label != nullptr) {
      // A name that was given to it would hide what it says.
      const QString shown = WithoutMnemonic(label->text());
      if (!shown.isEmpty() && !name.contains(shown))
        Fault(widget,
              "shows \"" + shown.toStdString() + "\", read is \"" + name.toStdString() + '"');
      return;
    }
    if (name.isEmpty()) return Fault(widget, "has no name");
    if (name.contains(u'&')) Fault(widget, "has a mnemonic in its name");
    // The name of a field that has none is its label's.
    const bool isLabels = widget.accessibleName().isEmpty();
    const bool isOdd = name.endsWith(u':') || name.endsWith(QLatin1String("..."));
    if (!isLabels && (isOdd || name.trimmed() != name))
      Fault(widget, "has the name \"" + name.toStdString() + '"');
  }

  void ReadStates(const QWidget& widget, const Node& node) {
    const QAccessible::State state = node.state();
    const bool takesKeys = widget.focusPolicy() != Qt::NoFocus && widget.isEnabled();
    if (takesKeys && !state.focusable) Fault(widget, "does not say that it takes the keyboard");
    if (state.disabled == widget.isEnabled())
      Fault(widget, "is enabled or not, and says otherwise");
    const auto* button = qobject_cast<const QAbstractButton*>(&widget);
    if (button == nullptr) return;
    if (state.checkable != button->isCheckable() || state.checked != button->isChecked())
      Fault(widget, "does not say whether it is checked");
  }

  void ReadValue(const QWidget& widget, Node& node) {
    const bool isNumber = node.role() == QAccessible::Slider ||
                          node.role() == QAccessible::SpinBox ||
                          node.role() == QAccessible::ProgressBar;
    if (!isNumber) return;
    QAccessibleValueInterface* value = node.valueInterface();
    if (value == nullptr) return Fault(widget, "has no value for readers");
    bool isNumeric = false;
    const double now = value->currentValue().toDouble(&isNumeric);
    const double least = value->minimumValue().toDouble(), most = value->maximumValue().toDouble();
    // A bar that only shows that something goes on has no limits.
    const bool isIdle = node.role() == QAccessible::ProgressBar && most == least;
    if (!isIdle && (!isNumeric || now < least || now > most))
      Fault(widget, "has a value beyond its limits");
  }

  void ReadActions(const QWidget& widget, Node& node) {
    if (qobject_cast<const QAbstractButton*>(&widget) == nullptr || !widget.isEnabled()) return;
    QAccessibleActionInterface* actions = node.actionInterface();
    if (actions == nullptr || actions->actionNames().isEmpty()) Fault(widget, "cannot be pressed");
  }

  QWidget& form_;
  Faults faults_;
};

bool HasMnemonic(const QString& text) {
  return !QKeySequence::mnemonic(text).isEmpty();
}

/// The label that stands for a control.
const QLabel* LabelOf(const QWidget& form, const QWidget& widget) {
  for (const QLabel* label : form.findChildren<QLabel*>()) {
    const QWidget* buddy = label->buddy();
    while (buddy != nullptr && buddy != &widget) buddy = buddy->focusProxy();
    if (label->isVisible() && buddy == &widget) return label;
  }
  return nullptr;
}

/// The letter of a group's title goes to the first control in it.
bool BeginsGroup(const QWidget& widget) {
  const auto* group = qobject_cast<const QGroupBox*>(widget.parentWidget());
  if (group == nullptr || !HasMnemonic(group->title())) return false;
  const QList<const QWidget*> inner = KeyboardControls(*group);
  return !inner.isEmpty() && inner.first() == &widget;
}

bool HasMnemonic(const QWidget& form, const QWidget& widget) {
  if (BeginsGroup(widget)) return true;
  const QLabel* label = LabelOf(form, widget);
  return HasMnemonic(TextOf(widget)) || (label != nullptr && HasMnemonic(label->text()));
}

bool HasKeys(const QWidget& widget) {
  const auto* button = qobject_cast<const QAbstractButton*>(&widget);
  if (button != nullptr && !button->shortcut().isEmpty()) return true;
  // The focus of a control of several parts comes from the control.
  for (const QWidget* whole = &widget; !whole->isWindow(); whole = whole->parentWidget()) {
    const QWidget* part = whole;
    while (part->focusProxy() != nullptr) part = part->focusProxy();
    const bool hasKeys = !whole->findChildren<QShortcut*>(Qt::FindDirectChildrenOnly).isEmpty();
    if (part == &widget && hasKeys) return true;
  }
  return false;
}

/// Enter and Escape press these.
bool EndsWindow(const QWidget& widget) {
  const auto* button = qobject_cast<const QPushButton*>(&widget);
  if (button == nullptr) return false;
  const QWidget* parent = widget.parentWidget();
  const bool isInBar = qobject_cast<const QDialogButtonBox*>(parent) != nullptr ||
                       qobject_cast<const TNavigator*>(parent) != nullptr;
  const bool isNamed = widget.objectName().contains(QLatin1String("OK")) ||
                       widget.objectName().contains(QLatin1String("Exit")) ||
                       widget.objectName().contains(QLatin1String("Cancel"));
  return isInBar || button->isDefault() || isNamed;
}

/// The control from which the tab key comes to this one.
const QWidget* Predecessor(const QWidget& widget) {
  const QWidget* before = widget.previousInFocusChain();
  while (before != &widget) {
    const bool takesTab = (before->focusPolicy() & Qt::TabFocus) != 0 && !before->focusProxy();
    if (takesTab && before->isVisible() && !before->objectName().startsWith("qt_")) return before;
    before = before->previousInFocusChain();
  }
  return before;
}

bool SharesMnemonic(const QWidget& form, const QWidget& widget) {
  if (LabelOf(form, widget) != nullptr || !TextOf(widget).isEmpty()) {
    // What a number field shows is no name.
    if (qobject_cast<const QAbstractSpinBox*>(&widget) == nullptr) return false;
  }
  const QWidget* before = Predecessor(widget);
  return before->parentWidget() == widget.parentWidget() && HasMnemonic(form, *before);
}

}  // namespace

Faults ReaderFaults(QWidget& form) {
  return Reader(form).Read();
}

Faults TwinNames(QWidget& form) {
  Faults faults;
  std::map<std::pair<int, QString>, const QWidget*> owners;
  for (const QWidget* widget : KeyboardControls(form)) {
    const Node* node = NodeOf(*widget);
    if (node == nullptr) continue;
    const auto [place, isNew] = owners.try_emplace({node->role(), Name(*node)}, widget);
    if (isNew) continue;
    faults.push_back(NameOf(*place->second) + " and " + NameOf(*widget) + " are both called \"" +
                     Name(*node).toStdString() + '"');
  }
  return faults;
}

Faults ControlsWithoutKey(QWidget& form) {
  Faults faults;
  for (const QWidget* widget : KeyboardControls(form)) {
    const bool beginsWindow = form.focusWidget() == widget;
    if (!widget->isEnabled() || beginsWindow || HasKeys(*widget) || EndsWindow(*widget)) continue;
    if (HasMnemonic(form, *widget) || SharesMnemonic(form, *widget)) continue;
    faults.push_back(NameOf(*widget) + " has neither a mnemonic nor keys of its own");
  }
  return faults;
}

}  // namespace rasterkit::test
