#include <QDesktopServices>
#include <QStandardPaths>
#include <QUrl>

#include <rasterkit/qt/host/documentation.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {

QString InstalledDocumentation() {
  return QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                QStringLiteral("rasterkit/dialogs.md"));
}

bool OpenHelp(int helpContext) {
  if (HostPorts().helpTopic) {
    ShowHelpTopic(helpContext);
    return true;
  }
  const QString installed = InstalledDocumentation();
  return !installed.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(installed));
}

}  // namespace rasterkit
