#include <QCoreApplication>
#include <QDir>
#include <QPushButton>

#include <rasterkit/dialogs/saving/form_saving.h>
#include <rasterkit/qt/files/file_list.h>
#include <rasterkit/qt/qt_text.h>

#include "samples/draw_scene.h"
#include "tests/dialogs/gallery/desk_folder.h"
#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

/// A user's folder with a photograph.
class Photographs {
 public:
  Photographs() {
    for (const char* folder : {"Garden", "House"}) QDir().mkpath(Path(folder));
    SaveOptions options;
    options.quality = 92;
    auto scene = std::make_unique<TBitmap>(samples::DrawScene(1600, 1200));
    Picture::Of(std::move(scene)).Save(File(), options);
  }
  std::string File() const { return FromQt(Path("front door.jpg")); }

 private:
  QString Path(const char* name) const {
    return desk_.Path(QStringLiteral("Photographs/") + QString::fromUtf8(name));
  }
  const DeskFolder desk_;
};

/// Made once, so that a window looks alike each time that it is opened.
const Photographs& Desk() {
  static const Photographs photographs;
  return photographs;
}

Picture Photograph(bool isCropped) {
  Picture picture = Picture::Open(Desk().File());
  // The place of a photograph that a BMP file would lack.
  MetadataEdit edit;
  edit.resolution = Resolution{300, 300};
  edit.set = {{"Artist", "Anna"}};
  picture.Edit(edit);
  if (isCropped) picture.Crop({101, 55, 1400, 1100});
  return picture;
}

class StagedSaving : public TFormSaving {
 public:
  StagedSaving(SavingScope scope, bool isCropped)
      : TFormSaving(Photograph(isCropped), {Desk().File(), {}, false}, scope) {}

  /// Waits for the size and for the pixels of the view.
  void Finish() {
    Model().Begin();
    Model().ResizeView(500, 400);
    const auto isReady = [this] { return !Model().Percent() && Model().After().pixels != nullptr; };
    while (!isReady()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const auto* list = findChild<TFileListView*>("FileListView");
    while (list != nullptr && !list->IsFilled()) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
  }
};

const Exhibit kFolder("save-picture-places", [] {
  auto form = std::make_unique<StagedSaving>(SavingScope::places, false);
  form->Finish();
  return form;
});

const Exhibit kQuality("save-picture-quality", [] {
  auto form = std::make_unique<StagedSaving>(SavingScope::places, true);
  form->findChild<QPushButton*>("ButtonSettings")->click();
  form->Model().SetQuality(20);
  form->Finish();
  return form;
});

const Exhibit kLosses("save-picture-named", [] {
  auto form = std::make_unique<StagedSaving>(SavingScope::chosenName, false);
  const std::vector<std::string> types = form->Model().Types().texts;
  form->Model().ChooseType(static_cast<int>(types.size()) - 1);
  form->Finish();
  return form;
});

const Exhibit kSettings("file-settings", [] {
  auto form = std::make_unique<StagedSaving>(SavingScope::settings, true);
  form->Finish();
  return form;
});

}  // namespace
}  // namespace rasterkit::test
