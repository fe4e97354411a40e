#include <QAbstractButton>
#include <QComboBox>
#include <QGuiApplication>
#include <QKeyEvent>
#include <optional>

#include <rasterkit/dialogs/editpdfbitmap/form_edit_pdf_bmp.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>

#include "ui_form_edit_pdf_bmp.h"

/// The window gets the keys and wheel events of its controls before the controls do.
namespace rasterkit {
namespace {

bool IsEnter(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

bool HoldsCtrl(const QKeyEvent& event) {
  return event.key() == Qt::Key_Control || event.modifiers().testFlag(Qt::ControlModifier);
}

EditKey EditKeyOf(const QKeyEvent& event) {
  if (IsEnter(event)) return EditKey::enter;
  switch (event.key()) {
    case Qt::Key_Escape:
      return EditKey::escape;
    case Qt::Key_Delete:
      return EditKey::del;
    case Qt::Key_H:
      return EditKey::h;
    case Qt::Key_Z:
      return EditKey::z;
    default:
      return EditKey::other;
  }
}

/// Returns the key's effect on the text of a combo box; nothing if it only moves the caret or is a
/// command.
std::optional<ComboKey> ComboKeyOf(const QKeyEvent& event) {
  if (IsEnter(event)) return ComboKey::enter;
  if (event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete) return ComboKey::backspace;
  if (event.matches(QKeySequence::Cut)) return ComboKey::backspace;
  if (event.matches(QKeySequence::Paste)) return ComboKey::digit;
  if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
    return std::nullopt;
  }
  const QString text = event.text();
  if (text.isEmpty() || !text[0].isPrint()) return std::nullopt;
  if (text[0] >= u'0' && text[0] <= u'9') return ComboKey::digit;
  return text[0] == u'-' ? ComboKey::minus : ComboKey::other;
}

/// Whether a typed page was not applied yet.
bool HasPageToCome(const QSpinBox& box) {
  return box.text() != QString::number(box.value());
}

}  // namespace

void TFormEditPdfBmp::WatchKeyboard() {
  for (QWidget* widget : findChildren<QWidget*>()) {
    if (widget->focusPolicy() != Qt::NoFocus && widget->focusProxy() == nullptr) {
      widget->installEventFilter(this);
    }
  }
}

bool TFormEditPdfBmp::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
      if (KeyDown(*watched, *static_cast<QKeyEvent*>(event))) return true;
      break;
    case QEvent::KeyRelease:
      model_->FormKeyUp();
      break;
    case QEvent::Wheel:
      wheelEvent(static_cast<QWheelEvent*>(event));
      return true;
    case QEvent::FocusOut:
      if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) LeaveBox(*watched);
      break;
    default:
      break;
  }
  return TScaledForm::eventFilter(watched, event);
}

void TFormEditPdfBmp::LeaveBox(const QObject& box) {
  if (&box == ui_->CoBoResolution || &box == ui_->CoBoRotation) model_->CoBoExit();
}

bool TFormEditPdfBmp::KeyDown(const QObject& receiver, const QKeyEvent& event) {
  const std::optional<ComboKey> comboKey = ComboKeyOf(event);
  if (comboKey && &receiver == ui_->CoBoResolution) {
    return !model_->CoBoResolutionKeyPress(*comboKey);
  }
  if (comboKey && &receiver == ui_->CoBoRotation) return !model_->CoBoRotationKeyPress(*comboKey);
  if (PressButton(receiver, event) || TakePage(receiver, event)) return true;
  if (IsForPage(receiver, event)) return false;
  return model_->FormKeyDown(EditKeyOf(event), HoldsCtrl(event));
}

/// Enter presses a focused cancel or help button; everywhere else it confirms.
bool TFormEditPdfBmp::PressButton(const QObject& receiver, const QKeyEvent& event) {
  if (!IsEnter(event)) return false;
  for (const TNavigateButton which : {nbCancel, nbHelp}) {
    QPushButton& button = ui_->NaviResult->Button(which);
    if (&receiver != &button) continue;
    button.click();
    return true;
  }
  return false;
}

/// Keys typed into the page number are not for the window.
bool TFormEditPdfBmp::IsForPage(const QObject& receiver, const QKeyEvent& event) const {
  if (&receiver != ui_->SpinEditPage) return false;
  if (event.key() == Qt::Key_Delete) return true;
  return event.key() != Qt::Key_Escape && !IsEnter(event) && HasPageToCome(*ui_->SpinEditPage);
}

bool TFormEditPdfBmp::TakePage(const QObject& receiver, const QKeyEvent& event) {
  if (&receiver != ui_->SpinEditPage || !IsEnter(event)) return false;
  if (!HasPageToCome(*ui_->SpinEditPage)) return false;
  ui_->SpinEditPage->interpretText();
  return true;
}

// Gets keys for the window itself and keys that no control used: handling them twice changes
// nothing. The default Enter and Escape of QDialog would bypass the model.
void TFormEditPdfBmp::keyPressEvent(QKeyEvent* event) {
  event->setAccepted(KeyDown(*this, *event));
}

void TFormEditPdfBmp::keyReleaseEvent(QKeyEvent* event) {
  model_->FormKeyUp();
  TScaledForm::keyReleaseEvent(event);
}

void TFormEditPdfBmp::TellIfCtrlIsHeld() {
  if (QGuiApplication::keyboardModifiers().testFlag(Qt::ControlModifier)) {
    model_->FormKeyDown(EditKey::other, true);
  }
}

}  // namespace rasterkit
