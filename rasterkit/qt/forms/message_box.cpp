#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QStyle>
#include <QThread>

#include <rasterkit/qt/forms/message_box.h>
#include <rasterkit/qt/forms/modal_window.h>
#include <rasterkit/qt/look/clear_style.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

void Show(const QString& text) {
  const std::unique_ptr<QMessageBox> box = MakeMessageBox(text);
  PutOverActiveWindow(*box);
  box->exec();
}

/// Converts the line ends of all systems.
QString WithPlainLineEnds(QString text) {
  return text.replace("\r\n", "\n").replace('\r', '\n');
}

/// With an icon of this library: Qt's is a bitmap, which is coarse on high-density screens.
class DrawnMessageBox : public QMessageBox {
 public:
  explicit DrawnMessageBox(const char* icon) : drawing_(rasterkit::Icon(icon)) { Draw(); }

 protected:
  void changeEvent(QEvent* event) override {
    QMessageBox::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) Draw();
  }

 private:
  void Draw() {
    const int side = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    setIconPixmap(drawing_.pixmap(QSize(side, side), devicePixelRatioF()));
  }

  const QIcon drawing_;
};

std::unique_ptr<QMessageBox> MakeBox(const char* name, const char* icon, const QString& text) {
  auto box = std::make_unique<DrawnMessageBox>(icon);
  box->setObjectName(name);
  box->setWindowTitle(QGuiApplication::applicationDisplayName());
  // A text with a file name must not be interpreted as HTML.
  box->setTextFormat(Qt::PlainText);
  box->setText(WithPlainLineEnds(text));
  box->setTextInteractionFlags(Qt::TextSelectableByMouse);
  box->setAttribute(Qt::WA_QuitOnClose, false);
  return box;
}

}  // namespace

void ShowMessageBox(const std::string& text) {
  const QString shown = ToQt(text);
  if (QThread::currentThread() == qApp->thread()) return Show(shown);
  QMetaObject::invokeMethod(
      qApp, [shown] { Show(shown); }, Qt::QueuedConnection);
}

bool AskYesOrNo(const std::string& question) {
  if (QThread::currentThread() != qApp->thread()) return false;
  const std::unique_ptr<QMessageBox> box = MakeQuestionBox(ToQt(question));
  PutOverActiveWindow(*box);
  return box->exec() == QMessageBox::Yes;
}

std::unique_ptr<QMessageBox> MakeMessageBox(const QString& text) {
  auto box = MakeBox("MessageBox", "info", text);
  box->setStandardButtons(QMessageBox::Ok);
  box->button(QMessageBox::Ok)->setText(ResourceText(rsOk));
  detail::UseClearStyle(*box);
  return box;
}

std::unique_ptr<QMessageBox> MakeQuestionBox(const QString& question) {
  auto box = MakeBox("QuestionBox", "help", question);
  box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
  box->button(QMessageBox::Yes)->setText(ResourceText(rsYes));
  box->button(QMessageBox::Yes)->setObjectName("ButtonYes");
  box->button(QMessageBox::No)->setText(ResourceText(rsNo));
  box->button(QMessageBox::No)->setObjectName("ButtonNo");
  box->setDefaultButton(QMessageBox::No);
  box->setEscapeButton(QMessageBox::No);
  detail::UseClearStyle(*box);
  return box;
}

}  // namespace rasterkit
