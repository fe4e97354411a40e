#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QToolButton>
#include <filesystem>

#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/dialogs/savedlgext/form_save_dlg_ext.h>
#include <rasterkit/qt/files/file_list.h>
#include <rasterkit/qt/forms/message_box.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

#include "tests/dialogs/gallery/desk_folder.h"
#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

/// A user's folder of plans.
class Plans {
 public:
  Plans() {
    for (const char* folder : {"Details", "Photographs"}) QDir().mkpath(Path(folder));
    int size = 31000, day = 1;
    for (const char* name : {"floor 1.png", "floor 2.png", "floor 10.png", "section A-A.png",
                             "site plan.png", "view north.png"}) {
      Put(Path(name), size, day);
      size = size * 5 / 2;
      day += 4;
    }
    for (const char* folder : {"Details", "Photographs"}) Age(Path(folder), Path("floor 2.png"));
  }
  std::string Folder() const { return FromQt(desk_.Path("Plans")); }

 private:
  QString Path(const char* name) const { return desk_.Path(QStringLiteral("Plans/") + name); }
  /// Makes a folder as old as a file.
  static void Age(const QString& folder, const QString& file) {
    const std::filesystem::path old = file.toStdString();
    std::filesystem::last_write_time(folder.toStdString(), std::filesystem::last_write_time(old));
  }
  static void Put(const QString& name, int size, int day) {
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly)) return;
    file.resize(size);
    file.setFileTime(QDateTime(QDate(2024, 5, day), QTime(10, 30)),
                     QFileDevice::FileModificationTime);
  }

  const DeskFolder desk_;
};

/// The form with what it needs; the folder is made first and goes last.
class StagedSaveWindow : private Plans, public TFormSaveDlgExt {
 public:
  explicit StagedSaveWindow(TViewStyle style) {
    SetFilter(GetSaveFilter(false));
    SetFilterIndex(GetSaveFilterIndex(".png"));
    SetDefaultExt(".png");
    SetInitialDir(Folder());
    SetFileName("site plan 2.png");
    SetOnOptionsClick([] {});
    if (style == vsList) findChild<QToolButton*>("SBList")->click();
    const auto& list = *findChild<TFileListView*>("FileListView");
    while (!list.IsFilled()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
};

const Exhibit kReport("save-window", [] { return std::make_unique<StagedSaveWindow>(vsReport); });
const Exhibit kList("save-window-list", [] { return std::make_unique<StagedSaveWindow>(vsList); });
const Exhibit kQuestion("question-box", [] {
  const std::string file = "/home/anna/Plans/site plan.png";
  return MakeQuestionBox(ToQt(FormatText(ResourceString(rsSaveFileExists), {&file, 1})));
});

}  // namespace
}  // namespace rasterkit::test
