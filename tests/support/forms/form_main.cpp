#include <QApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

// Does not use the developer's display and settings; texts and numbers are English in every locale.
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
