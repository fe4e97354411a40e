#include "tests/support/forms/form_events.h"

#include <QApplication>
#include <QPixmap>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <utility>

namespace rasterkit::test {

void TurnWheel(QWidget& widget, QPoint position, int delta, Qt::KeyboardModifiers modifiers) {
  QWheelEvent event(position, widget.mapToGlobal(position), QPoint(), QPoint(0, delta),
                    Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&widget, &event);
}

void Settle(QWidget& form) {
  // The thread that reads the messages of the X server is separate: sync() alone does not suffice.
  constexpr int kPause = 5, kCalmRounds = 3, kMostRounds = 400;
  QRect last;
  for (int round = 0, calm = 0; round < kMostRounds && calm < kCalmRounds; ++round) {
    QGuiApplication::sync();
    QTest::qWait(kPause);
    calm = form.geometry() == last ? calm + 1 : 0;
    last = form.geometry();
  }
}

bool ShowSettled(QWidget& form) {
  form.show();
  const bool isShown = QTest::qWaitForWindowExposed(&form);
  Settle(form);
  return isShown;
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
