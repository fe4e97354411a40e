#include <rasterkit/qt/scaled_form.h>

namespace rasterkit {

TScaledForm::TScaledForm(QWidget* parent) : QDialog(parent) {
  // A host without a window of its own must not end because its dialog did.
  setAttribute(Qt::WA_QuitOnClose, false);
  setSizeGripEnabled(true);
}

int TScaledForm::ShowModal() {
  return exec() == QDialog::Accepted ? mrOk : mrCancel;
}

}  // namespace rasterkit
