#include "tests/support/forms/form_events.h"

#include <QApplication>
#include <QPixmap>
#include <QTimer>
#include <QWheelEvent>
#include <utility>

namespace rasterkit::test {

void TurnWheel(QWidget& widget, QPoint position, int delta, Qt::KeyboardModifiers modifiers) {
  QWheelEvent event(position, widget.mapToGlobal(position), QPoint(), QPoint(0, delta),
                    Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&widget, &event);
}

QImage GrabForm(QWidget& form) {
  form.ensurePolished();
  return form.grab().toImage();
}

void WhenModal(std::function<void(QWidget&)> action) {
  QTimer::singleShot(0, [action = std::move(action)] {
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr) return WhenModal(action);
    const QPointer<QWidget> watched = window;
    action(*window);
    if (watched && watched == QApplication::activeModalWidget()) watched->close();
  });
}

}  // namespace rasterkit::test
