#include <QApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

// A display of the developer's, and the settings in the home folder, are left alone; texts and
// numbers are English in whatever language the developer lives.
int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("LC_ALL", "C.UTF-8");
  qunsetenv("LANGUAGE");
  QStandardPaths::setTestModeEnabled(true);
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setStyle("Fusion");
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
