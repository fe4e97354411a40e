#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <cstdio>

#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/look/style.h>

#include "tests/dialogs/gallery/gallery.h"
#include "tests/dialogs/gallery/photograph_file_dialogs.h"
#include "tests/support/forms/form_events.h"

// dialogs_screenshots FOLDER light|dark LANGUAGE: writes NAME-LANGUAGE-STYLE-SCALE.png of every
// form. The scale is what the screen has, QT_SCALE_FACTOR=2 for 200 percent.
namespace rasterkit::test {
namespace {

QImage Photograph(const Exhibited& exhibited) {
  const std::unique_ptr<QWidget> form = exhibited.make();
  form->show();
  QCoreApplication::processEvents();
  return GrabForm(*form);
}

bool Keep(const QImage& image, const QDir& folder, const QString& name, const QString& style) {
  const int percent = qRound(100 * image.devicePixelRatio());
  const QString file =
      folder.filePath(QStringLiteral("%1-%2-%3.png").arg(name, style).arg(percent));
  std::printf("%s  %d x %d\n", qPrintable(file), image.width(), image.height());
  return image.save(file);
}

}  // namespace
}  // namespace rasterkit::test

int main(int argc, char** argv) {
  using namespace rasterkit;
  QStandardPaths::setTestModeEnabled(true);
  const QApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  const bool isUsage = arguments.size() == 4 && (arguments[2] == "light" || arguments[2] == "dark");
  if (!isUsage || !SetLanguage(arguments[3].toStdString())) {
    std::fprintf(stderr, "usage: dialogs_screenshots FOLDER light|dark LANGUAGE\n");
    return 2;
  }
  const QDir folder(arguments[1]);
  if (!folder.mkpath(".")) return 4;
  QApplication::setStyle("Fusion");
  const auto keep = [&](const QImage& image, const QString& name) {
    return test::Keep(image, folder, name + '-' + arguments[3], arguments[2]);
  };
  UsePalette(arguments[2] == "dark" ? DarkPalette() : LightPalette());
  for (const test::Exhibited& exhibited : test::Gallery()) {
    if (!keep(test::Photograph(exhibited), QString::fromStdString(exhibited.name))) return 4;
  }
  return test::PhotographFileDialogs(keep) ? 0 : 4;
}
