#include <QApplication>

#include <rasterkit/dialogs.h>
#include <rasterkit/qt.h>
#include <rasterkit/rasterkit.h>

// A host on Qt sees every public header, links both libraries, and finds its ports filled.
int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  const rasterkit::QtHost host("settings.ini");
  const rasterkit::TModalCall call;
  rasterkit::WriteSetting("Settings", "Key", "value");
  rasterkit::Application.ProcessMessages();
  return rasterkit::ReadSetting("Settings", "Key") == "value" ? 0 : 1;
}
