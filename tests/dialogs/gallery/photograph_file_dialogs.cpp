#include "tests/dialogs/gallery/photograph_file_dialogs.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTest>

#include <rasterkit/bitmaptools/files/picture_file_dialogs.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/qt/qt_text.h>

#include "tests/dialogs/gallery/desk_folder.h"
#include "tests/support/forms/form_events.h"

namespace rasterkit::test {
namespace {

/// A user's folders for the time of a photograph.
class Desk {
 public:
  Desk() {
    for (const char* folder : {"home", "Pictures"}) QDir().mkpath(desk_.Path(folder));
    qputenv("HOME", desk_.Path("home").toLocal8Bit());
    const QDir samples(QStringLiteral(RASTERKIT_SOURCE_TREE "/samples"));
    for (const QString& name : samples.entryList({"*.jpg", "*.png", "*.tif", "*.bmp"}))
      Put(samples.filePath(name), desk_.Path("Pictures/" + name));
  }
  ~Desk() { qputenv("HOME", home_); }

  std::string Pictures() const { return FromQt(desk_.Path("Pictures")) + "/"; }
  std::string Settings() const { return FromQt(desk_.Path("settings.ini")); }

 private:
  static void Put(const QString& source, const QString& target) {
    QFile::copy(source, target);
    QFile file(target);
    const QDateTime day(QDate(2024, 5, 17), QTime(10, 30));
    if (file.open(QIODevice::ReadWrite)) file.setFileTime(day, QFileDevice::FileModificationTime);
  }

  const DeskFolder desk_;
  const QByteArray home_ = qgetenv("HOME");
};

/// Photographs the dialog that `run` opens.
bool Photograph(const PhotographSink& sink, const QString& name, const std::function<void()>& run) {
  constexpr int kPatience = 20000;
  bool isKept = false;
  WhenModal([&](QWidget& window) {
    const auto* size = window.findChild<QLabel*>("PreviewText");
    const bool hasPreview =
        size != nullptr && QTest::qWaitFor([&] { return size->text().contains(u'×'); }, kPatience);
    isKept = hasPreview && sink(GrabForm(window), name);
  });
  run();
  return isKept;
}

}  // namespace

bool PhotographFileDialogs(const PhotographSink& sink) {
  const Desk desk;
  const QtHost host(desk.Settings());
  std::string opened = desk.Pictures() + "orientation-6.jpg", saved = desk.Pictures() + "plan.png";
  return Photograph(sink, "open-picture",
                    [&] { BitmapOpenDialog(desk.Pictures(), "", bfAll, opened, true); }) &&
         Photograph(sink, "save-picture",
                    [&] { BitmapSaveDialog(desk.Pictures(), ".png", false, saved, false); });
}

}  // namespace rasterkit::test
