#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>
#include <array>

#include <rasterkit/dialogs/editor/window/page_strip.h>
#include <rasterkit/dialogs/editor/window/picture_editor_form.h>
#include <rasterkit/pictures/document/document.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/format_text.h>

#include "samples/draw_scene.h"
#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

/// The files of the exhibits live as long as the process.
std::string FileNamed(const char* name) {
  static const QTemporaryDir folder;
  return FromQt(folder.filePath(name));
}

std::string PhotographFile() {
  static const std::string file = [] {
    std::string name = FileNamed("site.jpg");
    Picture::Of(std::make_unique<TBitmap>(samples::DrawScene(1600, 1200))).Save(name);
    return name;
  }();
  return file;
}

std::string PagesFile() {
  static const std::string file = [] {
    std::string name = FileNamed("scans.tif");
    Document document;
    for (int page = 0; page < 4; ++page) {
      Picture picture = Picture::Of(std::make_unique<TBitmap>(samples::DrawScene(900, 640)));
      picture.Turn(page % 2);
      document.Append(picture);
    }
    document.Save(name);
    return name;
  }();
  return file;
}

void WaitForJobs(TFormPictureEditor& form) {
  while (form.IsJobRunning() || form.Model().IsWorking()) {
    QApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
  }
}

std::unique_ptr<TFormPictureEditor> EditorOf(const std::string& file) {
  EditPictureOptions options;
  options.keepsJournal = false;
  auto form = std::make_unique<TFormPictureEditor>(options);
  form->Model().Open(file, 1);
  WaitForJobs(*form);
  return form;
}

const Exhibit kEditor("edit-picture", [] {
  auto form = EditorOf(PhotographFile());
  form->Model().Rotate(4);
  WaitForJobs(*form);
  form->Model().Mirror();
  WaitForJobs(*form);
  form->Model().Undo();
  WaitForJobs(*form);
  form->findChild<QAction*>("ActionShowSteps")->trigger();
  return form;
});

const Exhibit kPages("edit-picture-pages", [] {
  auto form = EditorOf(PagesFile());
  // The small pictures are drawn when they are seen.
  auto& pages = *static_cast<PageList*>(form->findChild<PageStrip*>()->model());
  pages.ShowRows(0, pages.rowCount() - 1);
  while (pages.DrawnPages() < pages.rowCount()) {
    QApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
  }
  return form;
});

/// The window while something runs.
const Exhibit kWorking("edit-picture-working", [] {
  auto form = EditorOf(PhotographFile());
  auto* bar = form->findChild<QProgressBar*>("ProgressJob");
  form->findChild<QWidget*>("PanelJob")->show();
  const QString title =
      ToQt(FormatText(ResourceString(rsStepRotate), std::array{std::string("4")}));
  bar->setAccessibleName(title);
  bar->setFormat(title + QStringLiteral(": %p %"));
  bar->setValue(42);
  return form;
});

}  // namespace
}  // namespace rasterkit::test
