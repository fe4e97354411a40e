#include <QAccessible>
#include <QComboBox>
#include <QEvent>
#include <QLineEdit>

#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/forms/modal_window.h>
#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/forms/window_settings.h>
#include <rasterkit/qt/look/clear_style.h>

namespace rasterkit {

TScaledForm::TScaledForm(QWidget* parent) : QDialog(parent) {
  // A host without a window of its own must not end because its dialog did.
  setAttribute(Qt::WA_QuitOnClose, false);
  setSizeGripEnabled(true);
  // Numbers as the texts have them.
  if (LanguageLocale() != locale()) setLocale(LanguageLocale());
}

namespace {

/// Screen readers meet the field inside of a box on its own, without the box's name.
void NameFieldsOfBoxes(const QWidget& form) {
  for (QComboBox* box : form.findChildren<QComboBox*>()) {
    QLineEdit* field = box->lineEdit();
    if (field == nullptr || !field->accessibleName().isEmpty()) continue;
    if (const auto* reader = QAccessible::queryAccessibleInterface(box))
      field->setAccessibleName(reader->text(QAccessible::Name));
  }
}

}  // namespace

bool TScaledForm::event(QEvent* event) {
  const bool isUsed = QDialog::event(event);
  if (event->type() == QEvent::Show) NameFieldsOfBoxes(*this);
  if (event->type() == QEvent::Show || event->type() == QEvent::StyleChange)
    detail::UseClearStyle(*this);
  return isUsed;
}

int TScaledForm::ShowModal() {
  PutOverActiveWindow(*this);
  LoadWindowSettings(*this, settingsName_);
  const int answer = exec();
  SaveWindowSettings(*this, settingsName_);
  return answer == QDialog::Accepted ? mrOk : mrCancel;
}

}  // namespace rasterkit
