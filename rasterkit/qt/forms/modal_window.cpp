#include <QApplication>
#include <QWindow>

#include <rasterkit/qt/forms/modal_window.h>
#include <rasterkit/qt/forms/window_settings.h>

namespace rasterkit {
namespace {

QWidget* ActiveWindow() {
  QWidget* modal = QApplication::activeModalWidget();
  return modal != nullptr ? modal : QApplication::activeWindow();
}

}  // namespace

void PutOverActiveWindow(QWidget& window) {
  const QWidget* active = ActiveWindow();
  if (active == nullptr || active == &window || active->windowHandle() == nullptr) return;
  window.winId();  // Makes the window's handle.
  window.windowHandle()->setTransientParent(active->windowHandle());
  if (!window.testAttribute(Qt::WA_Resized)) window.adjustSize();
  QRect place = window.geometry();
  place.moveCenter(active->geometry().center());
  PlaceWindow(window, place);
}

}  // namespace rasterkit
