// A host on Qt: a window with one picture, and the windows of Rasterkit that change it. What they
// answer are steps of a recipe; the file that was opened is never changed by them.

#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QScrollArea>
#include <QStatusBar>
#include <QToolBar>

#include <rasterkit/dialogs.h>
#include <rasterkit/pictures.h>
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
    AddCommand("Crop", &HostWindow::Crop);
    AddCommand("Values", &HostWindow::ChangeValues);
    AddCommand("Black and white", &HostWindow::MakeBlackAndWhite);
    AddCommand("Size", &HostWindow::ChangeSize);
    AddCommand("Undo", &HostWindow::Undo);
    AddCommand("Save", &HostWindow::Save);
    AddCommand("Edit", &HostWindow::Edit);
    resize(800, 600);
  }

  /// Headers are read here, pixels when they are shown. The picture is upright.
  void Load(const std::string& file) {
    rk::Picture opened = rk::Picture::Open(file);
    bitmap_ = opened.Bitmap();
    source_ = std::move(opened);
    steps_.clear();
    Show();
  }

 private:
  /// An exception of a command must not unwind Qt's event loop: Guarded shows it in a message box.
  void AddCommand(const char* text, void (HostWindow::*command)()) {
    connect(bar_.addAction(text), &QAction::triggered, this, rk::Guarded([this, command] {
              if (source_ || command == &HostWindow::Open) (this->*command)();
            }));
  }

  /// The source with all steps; copies of a picture are cheap.
  rk::Picture Result() const {
    rk::Picture result = *source_;
    for (const rk::RecipeStep& step : steps_) rk::ApplyRecipeStep(result, step);
    return result;
  }

  void Add(const rk::RecipeStep& step) {
    steps_.push_back(step);
    bitmap_ = Result().Bitmap();
    Show();
  }

  void Undo() {
    if (steps_.empty()) return;
    steps_.pop_back();
    bitmap_ = Result().Bitmap();
    Show();
  }

  void Open() {
    const std::string file = rk::ChooseFileToOpen("", true, this);
    if (!file.empty()) Load(file);
  }

  /// An options object says how the window starts and what it shows.
  void Crop() {
    const rk::Picture result = Result();
    rk::ChooseCropOptions options;
    options.unit = unit_;
    options.showsGuides = false;
    options.mapUnit = "m";
    if (result.SourceType() == rk::PictureType::jpeg) {
      options.isLossless = [&result](const rk::CropStep& part) {
        rk::Picture cropped = result;
        return cropped.Crop(part).PlanStream().isMoved;
      };
    }
    const auto crop = rk::ChooseCrop(*bitmap_, result, options, this);
    if (!crop) return;
    unit_ = crop->unit;
    Add(*crop);
  }

  void ChangeValues() {
    if (const auto values = rk::ChooseValues(*bitmap_, {}, this)) Add(rk::ChangeStep{*values});
  }

  void MakeBlackAndWhite() {
    if (const auto mono = rk::ChooseThreshold(*bitmap_, {}, this)) Add(rk::ChangeStep{*mono});
  }

  void ChangeSize() {
    if (const auto size = rk::ChooseSize(Result(), {}, this)) Add(*size);
  }

  /// The steps and the choice of the user are a recipe; WriteRecipe makes a file of it.
  void Save() {
    const rk::SavingStart start{source_->SourceFile(), {}, true};
    const auto choice = rk::ChooseSaving(Result(), start, this);
    if (!choice) return;
    rk::Recipe recipe;
    recipe.steps = steps_;
    recipe.save = choice->save;
    // Also removes from the other pages of a TIFF file what the user removes.
    const rk::RecipeOutput output(*source_, recipe);
    rk::SaveOptions options = rk::SaveOptionsOf(choice->save);
    options.mayReplace = choice->mayReplace;
    rk::Run run;
    run.progress = [this](double share) { progress_.setValue(qRound(100 * share)); };
    output.Save(choice->file, options, run);
    progress_.reset();
    statusBar()->showMessage(QString::fromStdString("Saved as " + choice->file));
  }

  /// The whole editor: it has undo and redo, and saves by itself. A callback tells what it wrote.
  void Edit() {
    rk::EditPictureOptions options;
    options.mayOpenOtherFiles = false;
    options.showsPages = false;
    options.onSaved = [this](const std::string& file, const rk::Recipe&, const rk::Report& report) {
      const auto losses = std::to_string(report.losses.size());
      statusBar()->showMessage(QString::fromStdString(file + ": " + losses + " losses"));
    };
    const auto edited = rk::EditPicture(source_->SourceFile(), options, this);
    if (edited) Load(edited->file);
  }

  void Show() {
    view_.setPixmap(QPixmap::fromImage(rk::ImageOfBitmap(*bitmap_)));
    view_.adjustSize();
  }

  QToolBar& bar_ = *addToolBar("Picture");
  QScrollArea& scroller_ = *new QScrollArea;
  QLabel& view_ = *new QLabel;
  QProgressBar& progress_ = *new QProgressBar;
  /// The picture as it was opened, the steps, and the pixels that they lead to.
  std::optional<rk::Picture> source_;
  std::vector<rk::RecipeStep> steps_;
  std::unique_ptr<rk::TBitmap> bitmap_;
  /// In which the user cropped last.
  rk::LengthUnit unit_ = rk::LengthUnit::pixels;
};

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  const rk::QtHost host;  // fills the ports: message boxes, file dialogs, Qt's loop
  HostWindow window;
  window.show();
  if (argc > 1) rk::Application.Guard([&] { window.Load(argv[1]); });
  return QApplication::exec();
}
