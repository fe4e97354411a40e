// A host on Qt: a window with one picture, which the dialogs of Rasterkit change.

#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QScrollArea>
#include <QStatusBar>
#include <QToolBar>

#include <rasterkit/dialogs.h>
#include <rasterkit/qt.h>
#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

class HostWindow : public QMainWindow {
 public:
  HostWindow() {
    setCentralWidget(&scroller_);
    scroller_.setWidget(&view_);
    statusBar()->addPermanentWidget(&progress_);
    AddCommand("Open", &HostWindow::Open);
    AddCommand("Values", &HostWindow::ChangeValues);
    AddCommand("Size", &HostWindow::ChangeSize);
    AddCommand("Crop", &HostWindow::Crop);
    AddCommand("Lay over", &HostWindow::LayOver);
    AddCommand("Save", &HostWindow::Save);
    resize(800, 600);
  }

  void Load(const std::string& fileName) {
    std::unique_ptr<rk::TBitmap> loaded = Picture(fileName);
    if (!loaded) return;
    bitmap_ = std::move(loaded);
    fileName_ = fileName;
    Show();
  }

 private:
  /// An exception of a command must not unwind Qt's event loop: Guarded shows it in a message box.
  void AddCommand(const char* text, void (HostWindow::*command)()) {
    connect(bar_.addAction(text), &QAction::triggered, this, rk::Guarded([this, command] {
              if (bitmap_ || command == &HostWindow::Open) (this->*command)();
            }));
  }

  /// The picture of a file, upright; null after a message.
  static std::unique_ptr<rk::TBitmap> Picture(const std::string& fileName) {
    std::unique_ptr<rk::TBitmap> loaded;
    if (!rk::LoadWindowsBitmap(fileName, 0, loaded))
      rk::ShowMessage(fileName + " is not a picture.");
    return loaded;
  }

  void Open() {
    std::string fileName = fileName_;
    if (rk::BitmapOpenDialog("", "", rk::bfLoadBmp, fileName, true)) Load(fileName);
  }

  void ChangeValues() {
    if (rk::ChangeBitmap(0, bitmap_.get(), true, values_)) Show();
  }

  void ChangeSize() {
    int32_t width = bitmap_->Width(), height = bitmap_->Height();
    bool isProportional = true;
    if (!rk::EditSize(width, height, isProportional)) return;
    bitmap_ = rk::ChangeBitmapSize(bitmap_.get(), width, height, true);
    Show();
  }

  void Crop() {
    if (rk::CropBitmap(*bitmap_, cut_)) Show();
  }

  /// Mixes another picture in, with a progress bar.
  void LayOver() {
    std::string fileName;
    if (!rk::BitmapOpenDialog("", "", rk::bfLoadBmp, fileName, true)) return;
    std::unique_ptr<rk::TBitmap> other = Picture(fileName);
    if (!other) return;
    bitmap_->SetPixelFormat(rk::pf24bit);
    rk::ResizeBitmap(other, bitmap_->Width(), bitmap_->Height(), true);
    rk::CombineGeoResTrans(bitmap_.get(), other.get(), 50, false, 1,
                           [this](float percent) { progress_.setValue(qRound(percent)); });
    progress_.reset();
    Show();
  }

  void Save() {
    const std::string extension = rk::ExtractFileExt(fileName_);
    if (!rk::BitmapSaveDialog("", extension, false, fileName_, true)) return;
    rk::SaveWindowsBitmap(*bitmap_, 0, 0, fileName_);
    rk::ShowMessage("Saved as " + fileName_);
  }

  void Show() {
    view_.setPixmap(QPixmap::fromImage(rk::ImageOfBitmap(*bitmap_)));
    view_.adjustSize();
  }

  QToolBar& bar_ = *addToolBar("Picture");
  QScrollArea& scroller_ = *new QScrollArea;
  QLabel& view_ = *new QLabel;
  QProgressBar& progress_ = *new QProgressBar;
  std::unique_ptr<rk::TBitmap> bitmap_;
  std::string fileName_;
  rk::TChgBmpValuesRec values_;
  rk::TRect cut_{};
};

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  const rk::QtHost host;  // fills the ports: message boxes, file dialogs, Qt's loop
  HostWindow window;
  window.show();
  if (argc > 1) rk::Application.Guard([&] { window.Load(argv[1]); });
  return QApplication::exec();
}
