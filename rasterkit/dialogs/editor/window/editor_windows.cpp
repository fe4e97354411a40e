#include <QDesktopServices>

#include <rasterkit/dialogs/editor/window/editor_windows.h>

namespace rasterkit {

EditorWindows UsualEditorWindows() {
  EditorWindows windows;
  windows.crop = ChooseCrop;
  windows.values = [](const TBitmap& pixels, QWidget* parent) {
    return ChooseValues(pixels, {}, parent);
  };
  windows.threshold = [](const TBitmap& pixels, QWidget* parent) {
    return ChooseThreshold(pixels, {}, parent);
  };
  windows.size = [](const Picture& picture, QWidget* parent) {
    return ChooseSize(picture, {}, parent);
  };
  windows.saving = ChooseSaving;
  windows.settings = ChooseSaveSettings;
  windows.fileToOpen = ChooseFileToOpen;
  windows.document = QDesktopServices::openUrl;
  return windows;
}

}  // namespace rasterkit
