#include <QAbstractButton>
#include <QApplication>
#include <QStyle>
#include <QThread>

#include <rasterkit/qt/icons.h>
#include <rasterkit/qt/message_box.h>
#include <rasterkit/qt/modal_window.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

void Show(const QString& text) {
  const std::unique_ptr<QMessageBox> box = MakeMessageBox(text);
  PutOverActiveWindow(*box);
  box->exec();
}

}  // namespace

void ShowMessageBox(const std::string& text) {
  const QString shown = ToQt(text);
  if (QThread::currentThread() == qApp->thread()) return Show(shown);
  QMetaObject::invokeMethod(
      qApp, [shown] { Show(shown); }, Qt::QueuedConnection);
}

std::unique_ptr<QMessageBox> MakeMessageBox(const QString& text) {
  auto box = std::make_unique<QMessageBox>();
  box->setObjectName(QStringLiteral("MessageBox"));
  box->setWindowTitle(QGuiApplication::applicationDisplayName());
  // Qt's own is a bitmap that screens of high density show coarse.
  const int side = box->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, box.get());
  box->setIconPixmap(Icon("info").pixmap(QSize(side, side), box->devicePixelRatioF()));
  // Not to be read as HTML: the text may hold a file's name.
  box->setTextFormat(Qt::PlainText);
  box->setText(text);
  box->setTextInteractionFlags(Qt::TextSelectableByMouse);
  box->setStandardButtons(QMessageBox::Ok);
  box->button(QMessageBox::Ok)->setText(ResourceText(rsOk));
  box->setAttribute(Qt::WA_QuitOnClose, false);
  return box;
}

}  // namespace rasterkit
