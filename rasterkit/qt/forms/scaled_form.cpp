#include <QAccessible>
#include <QComboBox>
#include <QEvent>
#include <QLineEdit>
#include <algorithm>

#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/forms/modal_window.h>
#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/forms/window_settings.h>
#include <rasterkit/qt/look/clear_style.h>

namespace rasterkit {

TScaledForm::TScaledForm(QWidget* parent) : QDialog(parent) {
  // A host without a window must not quit because its dialog was closed.
  setAttribute(Qt::WA_QuitOnClose, false);
  setSizeGripEnabled(true);
  // Numbers have the language of the texts.
  if (LanguageLocale() != locale()) setLocale(LanguageLocale());
}

namespace {

/// Screen readers visit the field inside a combo box separately, without the name of the box.
void NameFieldsOfBoxes(const QWidget& form) {
  for (QComboBox* box : form.findChildren<QComboBox*>()) {
    QLineEdit* field = box->lineEdit();
    if (field == nullptr || !field->accessibleName().isEmpty()) continue;
    if (const auto* reader = QAccessible::queryAccessibleInterface(box)) {
      field->setAccessibleName(reader->text(QAccessible::Name));
    }
  }
}

}  // namespace

bool TScaledForm::event(QEvent* event) {
  const bool isUsed = QDialog::event(event);
  if (event->type() == QEvent::Show) NameFieldsOfBoxes(*this);
  if (event->type() == QEvent::Show || event->type() == QEvent::StyleChange) {
    detail::UseClearStyle(*this);
  }
  return isUsed;
}

void TScaledForm::setVisible(bool visible) {
  if (visible && isHidden()) FitToTexts();
  QDialog::setVisible(visible);
}

/// A hidden window does not follow texts that become longer. If it grew only after it is on the
/// screen, a late message of the X server could set its first size again.
void TScaledForm::FitToTexts() {
  QList<QWidget*> widgets = findChildren<QWidget*>();
  // Children come after their parents in the list, and must report their sizes before them.
  std::reverse(widgets.begin(), widgets.end());
  for (QWidget* const widget : widgets) {
    widget->ensurePolished();
    widget->updateGeometry();
  }
  // Qt itself chooses the size of a window that has none.
  if (testAttribute(Qt::WA_Resized) && !isMaximized()) resize(size().expandedTo(minimumSizeHint()));
}

int TScaledForm::ShowModal() {
  PutOverActiveWindow(*this);
  LoadWindowSettings(*this, settingsName_);
  const int answer = exec();
  SaveWindowSettings(*this, settingsName_);
  return answer == QDialog::Accepted ? mrOk : mrCancel;
}

}  // namespace rasterkit
