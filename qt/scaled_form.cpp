#include <rasterkit/qt/language.h>
#include <rasterkit/qt/modal_window.h>
#include <rasterkit/qt/scaled_form.h>
#include <rasterkit/qt/window_settings.h>

namespace rasterkit {

TScaledForm::TScaledForm(QWidget* parent) : QDialog(parent) {
  // A host without a window of its own must not end because its dialog did.
  setAttribute(Qt::WA_QuitOnClose, false);
  setSizeGripEnabled(true);
  // Numbers as the texts have them.
  if (LanguageLocale() != locale()) setLocale(LanguageLocale());
}

int TScaledForm::ShowModal() {
  PutOverActiveWindow(*this);
  LoadWindowSettings(*this, settingsName_);
  const int answer = exec();
  SaveWindowSettings(*this, settingsName_);
  return answer == QDialog::Accepted ? mrOk : mrCancel;
}

}  // namespace rasterkit
