#include <QKeyEvent>

#include <rasterkit/qt/controls/redo_keys.h>

namespace rasterkit {

bool IsRedo(const QKeyEvent& event) {
  const Qt::KeyboardModifiers keys = event.modifiers() & ~Qt::KeypadModifier;
  return event.matches(QKeySequence::Redo) ||
         (event.key() == Qt::Key_Y && keys == Qt::ControlModifier) ||
         (event.key() == Qt::Key_Z && keys == (Qt::ControlModifier | Qt::ShiftModifier));
}

}  // namespace rasterkit
