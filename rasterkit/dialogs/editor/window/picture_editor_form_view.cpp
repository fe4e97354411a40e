#include <QAccessible>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QUrl>
#include <algorithm>
#include <array>
#include <exception>

#include <rasterkit/dialogs/editor/window/editor_documentation.h>
#include <rasterkit/dialogs/editor/window/editor_questions.h>
#include <rasterkit/dialogs/editor/window/lossless_crop.h>
#include <rasterkit/dialogs/editor/window/page_strip.h>
#include <rasterkit/dialogs/editor/window/picture_editor_form.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/forms/message_box.h>
#include <rasterkit/qt/forms/modal_window.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/strings/format_text.h>

/// The view of the model.
namespace rasterkit {
namespace {

/// A property of the window, for programs that work it from outside.
constexpr const char* kIsWorking = "isWorking";

/// The topic that a host's help shows.
constexpr int kHelpOfEditor = 530300;

QString Filled(std::string_view pattern, const std::string& value) {
  return ToQt(FormatText(ResourceString(pattern), std::array{value}));
}

/// Runs a window that may throw, and tells why it did not come.
template <typename Answer>
Answer Opened(const std::function<Answer()>& open) {
  try {
    return open();
  } catch (const std::exception& error) {
    ShowMessageBox(error.what());
    return {};
  }
}

}  // namespace

void TFormPictureEditor::ShowPixels(TBitmap* pixels) {
  pane_->Show(pixels);
}

bool TFormPictureEditor::IsIdle() const {
  return !isJobShown_ && !model_->IsWorking();
}

void TFormPictureEditor::ShowState() {
  if (!model_) return;
  setProperty(kIsWorking, jobs_.IsRunning() || model_->IsWorking() || !waiting_.empty());
  const QScopedValueRollback showing(isShowing_, true);
  const std::string title = model_->Title();
  setWindowTitle(title.empty() ? ResourceText(rsEditorWindow) : Filled(rsEditorTitle, title));
  ShowActions();
  ShowFields();
  ShowTexts();
  ShowSteps();
  ShowPages();
}

void TFormPictureEditor::ShowActions() {
  // For the moment before its progress is shown, what is called waits for the job.
  const bool isFree = !isJobShown_;
  const bool has = isFree && model_->HasPicture();
  const auto set = [this](EditorCommand command, bool enabled, bool visible = true) {
    actions_[command].setVisible(visible);
    actions_[command].setEnabled(enabled && visible);
  };
  set(EditorCommand::open, isFree, options_.mayOpenOtherFiles);
  set(EditorCommand::save, isFree && (model_->CanConfirm() || model_->IsWorking()));
  set(EditorCommand::saveAs, has, options_.showsSave);
  set(EditorCommand::settings, has, options_.showsSave);
  set(EditorCommand::undo, isFree && (model_->CanUndo() || model_->IsWorking()));
  set(EditorCommand::redo, isFree && (model_->CanRedo() || model_->IsWorking()));
  for (auto command = EditorCommand::turnLeft; command <= EditorCommand::colors256;
       command = static_cast<EditorCommand>(static_cast<int>(command) + 1)) {
    set(command, has);
  }
  const bool hasPages = model_->Pages() > 1 && options_.showsPages;
  const int page = model_->Page();
  set(EditorCommand::firstPage, isFree && page > 1, hasPages);
  set(EditorCommand::previousPage, isFree && page > 1, hasPages);
  set(EditorCommand::nextPage, isFree && page < model_->Pages(), hasPages);
  set(EditorCommand::lastPage, isFree && page < model_->Pages(), hasPages);
  set(EditorCommand::showPages, true, hasPages);
  Enable(ui_.navigator->Button(nbPost), isFree && model_->CanConfirm());
  ShowZoom();
}

void TFormPictureEditor::ShowFields() {
  const bool has = !isJobShown_ && model_->HasPicture();
  const std::optional<double> dpi = model_->DrawingDpi();
  ui_.cellResolution->setVisible(dpi.has_value());
  if (dpi && !model_->IsWorking()) ui_.resolution->setValue(qRound(*dpi));
  Enable(*ui_.resolution, !isJobShown_);
  Enable(*ui_.angle, has);
  Enable(*ui_.rotate, has);
  const int pages = model_->Pages();
  ui_.cellPage->setVisible(pages > 1 && options_.showsPages);
  ui_.labelPage->setText(Filled(rsEditorPage, std::to_string(pages)));
  ui_.page->setMaximum(std::max(pages, 1));
  if (!model_->IsWorking()) ui_.page->setValue(model_->Page());
  Enable(*ui_.page, !isJobShown_);
}

void TFormPictureEditor::ShowTexts() {
  const QString facts = ToQt(model_->Facts());
  ui_.facts->setText(facts);
  ui_.picture->SetContentText(facts);
  QStringList saving;
  if (model_->HasPicture()) {
    const std::string& note = model_->TargetNote();
    const std::string& target = model_->TargetFile();
    saving += note.empty() ? Filled(rsEditorTarget, ExtractFileName(target)) : ToQt(note);
    ui_.saving->setToolTip(Filled(rsEditorTarget, target));
  }
  if (const QString how = ToQt(model_->SavingFacts()); !how.isEmpty()) saving += how;
  ui_.saving->setText(saving.join(u'\n'));
  ShowLosses();
}

void TFormPictureEditor::ShowLosses() {
  const QString losses = ToQt(model_->Losses()), details = ToQt(model_->LossDetails());
  ui_.losses->setVisible(!losses.isEmpty());
  ui_.losses->setText(losses);
  ui_.losses->setToolTip(details);
  ui_.losses->setAccessibleDescription(details);
}

void TFormPictureEditor::ShowSteps() {
  QStringList names = {ResourceText(rsEditorAsOpened)};
  for (const std::string& name : model_->StepNames()) names += ToQt(name);
  QListWidget& list = *ui_.steps;
  while (list.count() > names.size()) delete list.takeItem(list.count() - 1);
  while (list.count() < names.size()) list.addItem(QString());
  const auto place = static_cast<int>(model_->Place());
  for (int row = 0; row < list.count(); ++row) {
    QListWidgetItem& item = *list.item(row);
    item.setText(names[row]);
    const auto group = row > place ? QPalette::Disabled : QPalette::Active;
    item.setForeground(palette().brush(group, QPalette::Text));
    QFont font = list.font();
    font.setBold(row == place);
    item.setFont(font);
  }
  if (list.currentRow() != place) list.setCurrentRow(place);
  Enable(list, !isJobShown_);
  ShowPanels();
}

void TFormPictureEditor::ShowPages() {
  const int pages = options_.showsPages && model_->Pages() > 1 ? model_->Pages() : 0;
  // A save writes other pages under the same name.
  const FileFacts facts = pages == 0 ? FileFacts() : FactsOfFile(model_->PagesFile());
  const bool isListed = model_->PagesFile() == listedFile_ && facts == listedFacts_;
  if (!isListed || pages != listedPages_) {
    listedFile_ = model_->PagesFile();
    listedFacts_ = facts;
    listedPages_ = pages;
    ui_.pages->SetDocument(
        pages, pages == 0 ? PageDrawing() : DrawPagesOf(listedFile_, options_.isolation));
  }
  if (pages > 0) ui_.pages->SetCurrent(model_->Page());
  Enable(*ui_.pages, !isJobShown_);
}

void TFormPictureEditor::ShowPanels() {
  ui_.panelPages->setVisible(listedPages_ > 1 && actions_[EditorCommand::showPages].isChecked());
  ui_.panelSteps->setVisible(actions_[EditorCommand::showSteps].isChecked());
}

void TFormPictureEditor::ShowZoom() {
  if (!model_) return;
  const PictureZoom& zoom = pane_->Zoom();
  const bool has = model_->Pixels() != nullptr && zoom.Factor() > 0;
  const auto percent = static_cast<int64_t>(std::max(zoom.Factor() * 100 + 0.5, 1.0));
  ui_.zoom->setText(has ? Filled(rsEditorZoom, std::to_string(percent)) : QString());
  constexpr double kALittle = 1.01;
  actions_[EditorCommand::fit].setEnabled(has);
  actions_[EditorCommand::actualSize].setEnabled(has);
  actions_[EditorCommand::zoomIn].setEnabled(has && zoom.CanZoom(kALittle));
  actions_[EditorCommand::zoomOut].setEnabled(has && zoom.CanZoom(1 / kALittle));
}

/// A control that had the focus when it was disabled gets the focus back.
void TFormPictureEditor::Enable(QWidget& widget, bool enabled) {
  if (widget.isEnabled() == enabled) return;
  if (!enabled && focusBefore_ == nullptr && focusWidget() == &widget) focusBefore_ = &widget;
  widget.setEnabled(enabled);
  if (!enabled || focusBefore_ != &widget) return;
  widget.setFocus();
  focusBefore_.clear();
}

void TFormPictureEditor::StartJob(EditorJob job) {
  jobTitle_ = job.title;
  setProperty(kIsWorking, true);
  if (isJobShown_) ui_.progress->setRange(0, 0);
  jobs_.Start(std::move(job));
  jobDelay_.start();
}

void TFormPictureEditor::CancelJob() {
  waiting_.clear();
  jobs_.Cancel();
}

void TFormPictureEditor::ShowJob() {
  if (!jobs_.IsRunning()) return;
  isJobShown_ = true;
  waiting_.clear();
  ui_.progress->setAccessibleName(ToQt(jobTitle_));
  ui_.progress->setRange(0, 0);
  ui_.panelJob->show();
  if (QWidget* focus = focusWidget(); focus != nullptr && focusBefore_ == nullptr) {
    focusBefore_ = focus;
  }
  ui_.cancelJob->setFocus();
  ShowState();
  ShowProgress();
  jobClock_.start();
  // Readers say that something began.
  QAccessibleEvent alert(ui_.progress, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void TFormPictureEditor::ShowProgress() {
  const double progress = jobs_.Progress();
  const QString title = ToQt(jobTitle_);
  if (progress < 0) {
    // Without a number the bar moves, and its words stand in the tip alone.
    ui_.progress->setFormat(title);
    return;
  }
  ui_.progress->setRange(0, 100);
  QString escaped = title;
  ui_.progress->setFormat(escaped.replace(u'%', QLatin1String("%%")) + QStringLiteral(": %p %"));
  ui_.progress->setValue(std::clamp(static_cast<int>(progress * 100), 0, 100));
}

void TFormPictureEditor::HideJob() {
  jobDelay_.stop();
  jobClock_.stop();
  if (jobs_.IsRunning()) return jobDelay_.start();
  if (!isJobShown_) return;
  isJobShown_ = false;
  ui_.panelJob->hide();
  const QPointer<QWidget> focus = focusBefore_;
  focusBefore_.clear();
  ShowState();
  if (focus && focus->isEnabled()) focus->setFocus();
}

EditorAnswer TFormPictureEditor::Ask(EditorQuestion question, const std::string& text) {
  return AskEditorQuestion(question, ToQt(text));
}

void TFormPictureEditor::Tell(const std::string& text) {
  ShowMessageBox(text);
}

std::optional<RecipeCrop> TFormPictureEditor::AskCrop(TBitmap& pixels, const Picture& picture) {
  return Opened<std::optional<RecipeCrop>>([&] {
    ChooseCropOptions options;
    options.isLossless = LosslessCropOf(picture, model_->TargetFile(), model_->Saving());
    return windows_.crop(pixels, picture, options, this);
  });
}

std::optional<AdjustColors> TFormPictureEditor::AskValues(const TBitmap& pixels) {
  return Opened<std::optional<AdjustColors>>([&] { return windows_.values(pixels, this); });
}

std::optional<MakeMono> TFormPictureEditor::AskThreshold(const TBitmap& pixels) {
  return Opened<std::optional<MakeMono>>([&] { return windows_.threshold(pixels, this); });
}

std::optional<RecipeResize> TFormPictureEditor::AskSize(const Picture& picture) {
  return Opened<std::optional<RecipeResize>>([&] { return windows_.size(picture, this); });
}

std::optional<SavingChoice> TFormPictureEditor::AskSaving(const Picture& result,
                                                          const SavingStart& start) {
  return Opened<std::optional<SavingChoice>>([&] {
    SavingStart own = start;
    own.usesDesktopDialog = options_.usesDesktopDialogs;
    return windows_.saving(result, own, this);
  });
}

std::optional<RecipeSave> TFormPictureEditor::AskSettings(const Picture& result,
                                                          const SavingChoice& start) {
  return Opened<std::optional<RecipeSave>>([&] { return windows_.settings(result, start, this); });
}

std::string TFormPictureEditor::AskFileToOpen(const std::string& folder) {
  return Opened<std::string>(
      [&] { return windows_.fileToOpen(folder, options_.usesDesktopDialogs, this); });
}

void TFormPictureEditor::OpenHelp() {
  if (options_.onHelp) return options_.onHelp();
  if (HostPorts().helpTopic) return ShowHelpTopic(kHelpOfEditor);
  const QString installed = InstalledDocumentation();
  const bool isOpen = !installed.isEmpty() && windows_.document(QUrl::fromLocalFile(installed));
  if (isOpen) return;
  const std::unique_ptr<TScaledForm> help = MakeEditorHelp(actions_.KeysAsText(), this);
  help->ShowModal();
}

void TFormPictureEditor::Close(bool isSaved) {
  isClosed_ = true;
  waiting_.clear();
  done(isSaved ? Accepted : Rejected);
}

}  // namespace rasterkit
