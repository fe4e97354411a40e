#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QLayout>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QSessionManager>
#include <QSplitter>
#include <QUrl>
#include <utility>

#include <rasterkit/dialogs/editor/window/page_strip.h>
#include <rasterkit/dialogs/editor/window/picture_editor_form.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

/// Text columns and lines of the window before the user gives it another size.
constexpr int kUsualColumns = 165, kUsualLines = 42;
/// In milliseconds; a job that ends earlier shows no progress.
constexpr int kPauseBeforeProgress = 250;
/// In milliseconds.
constexpr int kProgressInterval = 50;

/// Returns the first local file that is dropped; empty if there is none.
QString FileIn(const QMimeData& data) {
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) return url.toLocalFile();
  }
  return {};
}

}  // namespace

TFormPictureEditor::TFormPictureEditor(const EditPictureOptions& options, EditorWindows windows,
                                       QWidget* parent)
    : TScaledForm(parent), options_(options), windows_(std::move(windows)), actions_(*this) {
  setObjectName("FormPictureEditor");
  setWindowTitle(ResourceText(rsEditorWindow));
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  setWindowFlag(Qt::WindowMinimizeButtonHint);
  setAcceptDrops(true);
  ui_ = LayOutEditor(*this, actions_);
  pane_ = std::make_unique<PicturePane>(*ui_.picture);
  pane_->SetEmptyText(ResourceText(rsEditorNoPicture));
  model_ = std::make_unique<EditorModel>(static_cast<EditorView&>(*this), options_);
  ReadPanels();
  ConnectControls();
  ConnectPicture();
  WatchKeyboard();
  const QFontMetrics metrics(font());
  const QMargins edges = layout()->contentsMargins();
  const int toolsInOneLine = ui_.tools->sizeHint().width() + edges.left() + edges.right();
  const QSize usual(std::max(kUsualColumns * metrics.averageCharWidth(), toolsInOneLine),
                    kUsualLines * metrics.height());
  resize(usual.boundedTo(screen()->availableGeometry().size()));
  TFormPictureEditor::ShowState();
  ui_.picture->setFocus();
}

TFormPictureEditor::~TFormPictureEditor() {
  // A field that loses the focus calls the model, which must exist then.
  hide();
}

void TFormPictureEditor::ConnectControls() {
  connect(&actions_, &EditorActions::called, this, &TFormPictureEditor::Call);
  connect(&jobs_, &EditorJobs::ended, this, [this] {
    HideJob();
    ShowState();
    if (std::exchange(closesAfterJob_, false)) {
      close();
    } else {
      RunWaiting();
    }
  });
  jobDelay_.setSingleShot(true);
  jobDelay_.setInterval(kPauseBeforeProgress);
  connect(&jobDelay_, &QTimer::timeout, this, &TFormPictureEditor::ShowJob);
  jobClock_.setInterval(kProgressInterval);
  connect(&jobClock_, &QTimer::timeout, this, &TFormPictureEditor::ShowProgress);
  connect(ui_.cancelJob, &QPushButton::clicked, this, Guarded([this] { CancelJob(); }));

  connect(ui_.resolution, &QSpinBox::valueChanged, this, [this](int) { TakeResolution(); });
  connect(ui_.rotate, &QPushButton::clicked, this, [this] { RotateByField(); });
  connect(ui_.page, &QSpinBox::valueChanged, this, [this](int page) {
    if (!isShowing_) Guarded([this, page] { model_->ShowPage(page); })();
  });
  connect(ui_.pages, &PageStrip::pageChosen, this,
          [this](int page) { Guarded([this, page] { model_->ShowPage(page); })(); });
  connect(ui_.steps, &QListWidget::itemClicked, this, [this] {
    Guarded([this] { model_->GoTo(static_cast<size_t>(ui_.steps->currentRow())); })();
  });
  connect(ui_.navigator, &TNavigator::postClicked, this, Guarded([this] { model_->Confirm(); }));
  connect(ui_.navigator, &TNavigator::cancelClicked, this, [this] { reject(); });
  connect(qGuiApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager& manager) {
    const bool mayAsk = manager.allowsInteraction();
    const bool mayEnd = EndSession(mayAsk);
    if (mayAsk) manager.release();
    if (!mayEnd) manager.cancel();
  });
}

void TFormPictureEditor::ConnectPicture() {
  pane_->OnZoomChanged = [this] { ShowZoom(); };
  ui_.picture->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(ui_.picture, &QWidget::customContextMenuRequested, this, [this](const QPoint& place) {
    QMenu menu(this);
    menu.setObjectName("MenuPicture");
    actions_.FillContextMenu(menu);
    menu.exec(ui_.picture->mapToGlobal(place));
  });
}

void TFormPictureEditor::ShowEditor() {
  if (!isClosed_) ShowModal();
  WritePanels();
}

bool TFormPictureEditor::EndSession(bool mayAsk) {
  if (!mayAsk || isClosed_ || !isVisible()) return true;
  if (!CloseChildWindows()) return false;
  waiting_.clear();
  if (jobs_.IsRunning() && !jobs_.IsSaving()) CancelJob();
  WaitForJobs();
  model_->EndSession();
  // It may be saved first.
  WaitForJobs();
  return isClosed_;
}

/// Cancels the windows over this one; false if one of them stays.
bool TFormPictureEditor::CloseChildWindows() {
  while (QWidget* popup = QApplication::activePopupWidget()) {
    if (!popup->close()) return false;
  }
  for (QWidget* top = QApplication::activeModalWidget(); top != nullptr && top != this;
       top = QApplication::activeModalWidget()) {
    auto* dialog = qobject_cast<QDialog*>(top);
    const bool isMessage = qobject_cast<QMessageBox*>(top) != nullptr;
    // A window with work of its own would ask about that work first.
    if (dialog != nullptr && !isMessage) {
      dialog->done(QDialog::Rejected);
    } else {
      top->close();
    }
    if (QApplication::activeModalWidget() == top) return false;
  }
  return true;
}

void TFormPictureEditor::WaitForJobs() {
  while (jobs_.IsRunning()) {
    QEventLoop loop;
    connect(&jobs_, &EditorJobs::ended, &loop, &QEventLoop::quit);
    // Nonzero where the loops of the program are to end.
    if (loop.exec(QEventLoop::ExcludeUserInputEvents) != 0) return;
  }
}

void TFormPictureEditor::Call(EditorCommand command) {
  constexpr size_t kMostWaiting = 32;
  const bool isOfView = command >= EditorCommand::fit && command <= EditorCommand::showSteps;
  const bool isAlways = isOfView || command == EditorCommand::close ||
                        command == EditorCommand::help || command == EditorCommand::angle;
  if (isAlways || !model_->IsWorking()) return Run(command);
  if (waiting_.size() < kMostWaiting) waiting_.push_back(command);
}

void TFormPictureEditor::RunWaiting() {
  while (!waiting_.empty() && !model_->IsWorking() && !isClosed_) {
    const EditorCommand command = waiting_.front();
    waiting_.erase(waiting_.begin());
    if (actions_[command].isEnabled()) Run(command);
  }
  if (!isClosed_) ShowState();
}

void TFormPictureEditor::Run(EditorCommand command) {
  using Event = void (EditorModel::*)();
  switch (command) {
    case EditorCommand::close:
      close();
      return;
    case EditorCommand::angle:
      ui_.angle->setFocus(Qt::ShortcutFocusReason);
      return ui_.angle->selectAll();
    case EditorCommand::fit:
      return pane_->Fit();
    case EditorCommand::actualSize:
      return pane_->ShowActualSize();
    case EditorCommand::zoomIn:
      return pane_->ZoomIn();
    case EditorCommand::zoomOut:
      return pane_->ZoomOut();
    case EditorCommand::showPages:
    case EditorCommand::showSteps:
      return ShowPanels();
    case EditorCommand::firstPage:
      return model_->ShowPage(1);
    case EditorCommand::previousPage:
      return model_->ShowPage(std::max(model_->Page() - 1, 1));
    case EditorCommand::nextPage:
      return model_->ShowPage(std::min(model_->Page() + 1, model_->Pages()));
    case EditorCommand::lastPage:
      return model_->ShowPage(model_->Pages());
    default:
      break;
  }
  const std::pair<EditorCommand, Event> events[] = {
      {EditorCommand::open, &EditorModel::OpenOther},
      {EditorCommand::save, &EditorModel::Save},
      {EditorCommand::saveAs, &EditorModel::SaveAs},
      {EditorCommand::settings, &EditorModel::Settings},
      {EditorCommand::undo, &EditorModel::Undo},
      {EditorCommand::redo, &EditorModel::Redo},
      {EditorCommand::turnLeft, &EditorModel::TurnLeft},
      {EditorCommand::turnRight, &EditorModel::TurnRight},
      {EditorCommand::mirror, &EditorModel::Mirror},
      {EditorCommand::flip, &EditorModel::Flip},
      {EditorCommand::crop, &EditorModel::Crop},
      {EditorCommand::size, &EditorModel::Size},
      {EditorCommand::values, &EditorModel::Values},
      {EditorCommand::gray, &EditorModel::Gray},
      {EditorCommand::mono, &EditorModel::Mono},
      {EditorCommand::colors256, &EditorModel::Colors256},
      {EditorCommand::help, &EditorModel::Help}};
  for (const auto& [which, event] : events) {
    if (which == command) (*model_.*event)();
  }
}

void TFormPictureEditor::RotateByField() {
  if (!IsIdle() || !model_->HasPicture()) return;
  const double degrees = ui_.angle->value();
  if (degrees != 0) model_->Rotate(degrees);
}

void TFormPictureEditor::TakeResolution() {
  if (isShowing_ || !model_->DrawingDpi()) return;
  const int dpi = ui_.resolution->value();
  if (dpi != qRound(*model_->DrawingDpi())) model_->SetDrawingDpi(dpi);
  // A resolution that is refused is not shown as if it were the picture's.
  if (IsIdle()) ShowState();
}

bool TFormPictureEditor::event(QEvent* event) {
  const bool isUsed = TScaledForm::event(event);
  if (event->type() == QEvent::LayoutRequest) KeepLeastHeight();
  // The pale steps have colors of the palette.
  if (event->type() == QEvent::PaletteChange) ShowState();
  return isUsed;
}

void TFormPictureEditor::resizeEvent(QResizeEvent* event) {
  TScaledForm::resizeEvent(event);
  KeepLeastHeight();
}

/// Texts and tools take more lines in a narrow window.
void TFormPictureEditor::KeepLeastHeight() {
  const int needed = layout()->totalHeightForWidth(width());
  const int least = layout()->totalMinimumHeightForWidth(width());
  if (needed < 0 || least == minimumHeight()) return;
  setMinimumHeight(std::min(least, screen()->availableGeometry().height()));
}

void TFormPictureEditor::reject() {
  // A job that is not shown yet is not what the user means to cancel.
  closesAfterJob_ = jobs_.IsRunning() && !isJobShown_;
  model_->CancelOrClose();
}

void TFormPictureEditor::closeEvent(QCloseEvent* event) {
  if (!isClosed_) {
    // The frame closes the window, after the job that is canceled first.
    closesAfterJob_ = jobs_.IsRunning();
    model_->CancelOrClose();
  }
  event->setAccepted(isClosed_);
}

void TFormPictureEditor::dragEnterEvent(QDragEnterEvent* event) {
  const bool isTaken =
      options_.mayOpenOtherFiles && IsIdle() && !FileIn(*event->mimeData()).isEmpty();
  if (!isTaken) return event->ignore();
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void TFormPictureEditor::dropEvent(QDropEvent* event) {
  const std::string file = FromQt(FileIn(*event->mimeData()));
  event->setDropAction(Qt::CopyAction);
  event->accept();
  // The program from which the file comes waits for the end of this event.
  QMetaObject::invokeMethod(
      this, [this, file] { model_->OpenDropped(file); }, Qt::QueuedConnection);
}

}  // namespace rasterkit
