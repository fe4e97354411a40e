#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Does not use the developer's display and settings, nor those of a test that runs beside it; texts
// and numbers are English in every locale.
int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("LC_ALL", "C.UTF-8");
  qunsetenv("LANGUAGE");
  const QTemporaryDir home;
  for (const char* name : {"XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_DATA_HOME"}) {
    qputenv(name, home.path().toLocal8Bit());
  }
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setStyle("Fusion");
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
