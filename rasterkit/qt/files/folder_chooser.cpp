#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QThread>

#include <rasterkit/qt/files/folder_chooser.h>
#include <rasterkit/qt/forms/modal_window.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

QString NearestFolder(const QString& directory) {
  if (directory.isEmpty()) return QDir::currentPath();
  QFileInfo folder(QDir::cleanPath(QFileInfo(directory).absoluteFilePath()));
  while (!folder.isDir() && !folder.isRoot()) folder.setFile(folder.path());
  return folder.isDir() ? folder.filePath() : QDir::currentPath();
}

}  // namespace

bool ChooseFolder(std::string& directory, const std::string& prompt, int) {
  if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) return false;
  if (QThread::currentThread() != qApp->thread()) return false;
  QFileDialog dialog;
  dialog.setObjectName("FolderChooser");
  dialog.setAttribute(Qt::WA_QuitOnClose, false);
  dialog.setWindowTitle(ToQt(prompt));
  // Native dialogs may hide the prompt and differ between desktops.
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setDirectory(NearestFolder(ToQt(directory)));
  PutOverActiveWindow(dialog);
  if (dialog.exec() != QDialog::Accepted) return false;
  const QStringList chosen = dialog.selectedFiles();
  if (chosen.isEmpty() || !QFileInfo(chosen[0]).isDir()) return false;
  directory = FromQt(QFileInfo(chosen[0]).absoluteFilePath());
  return true;
}

}  // namespace rasterkit
