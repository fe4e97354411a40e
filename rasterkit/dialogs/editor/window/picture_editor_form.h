#pragma once

#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/dialogs/editor/edit_picture.h>
#include <rasterkit/dialogs/editor/editor_model.h>
#include <rasterkit/dialogs/editor/editor_view.h>
#include <rasterkit/dialogs/editor/window/editor_actions.h>
#include <rasterkit/dialogs/editor/window/editor_jobs.h>
#include <rasterkit/dialogs/editor/window/editor_layout.h>
#include <rasterkit/dialogs/editor/window/editor_windows.h>
#include <rasterkit/dialogs/editor/window/picture_pane.h>
#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/file_facts.h>

namespace rasterkit {

/// The window in which people edit a picture. It forwards all events to its model and shows the
/// model's state; jobs run on a thread of their own.
class RASTERKIT_EXPORT TFormPictureEditor : public TScaledForm, private EditorView {
  Q_OBJECT

 public:
  explicit TFormPictureEditor(const EditPictureOptions& options = {},
                              EditorWindows windows = UsualEditorWindows(),
                              QWidget* parent = nullptr);
  ~TFormPictureEditor() override;

  EditorModel& Model() { return *model_; }
  PicturePane& Pane() { return *pane_; }
  bool IsJobRunning() const { return jobs_.IsRunning(); }

  /// Shows the window until the model closes it.
  void ShowEditor();
  /// Cancels the windows over this one, waits for a save, and asks if work would be lost, unless it
  /// must not; true if the session may end. Work that is not
  /// saved then is in the journal.
  bool EndSession(bool mayAsk);

  void reject() override;

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  // EditorView
  void ShowPixels(TBitmap* pixels) override;
  void ShowState() override;
  void StartJob(EditorJob job) override;
  void CancelJob() override;
  EditorAnswer Ask(EditorQuestion question, const std::string& text) override;
  void Tell(const std::string& text) override;
  std::optional<RecipeCrop> AskCrop(TBitmap& pixels, const Picture& picture) override;
  std::optional<AdjustColors> AskValues(const TBitmap& pixels) override;
  std::optional<MakeMono> AskThreshold(const TBitmap& pixels) override;
  std::optional<RecipeResize> AskSize(const Picture& picture) override;
  std::optional<SavingChoice> AskSaving(const Picture& result, const SavingStart& start) override;
  std::optional<RecipeSave> AskSettings(const Picture& result, const SavingChoice& start) override;
  std::string AskFileToOpen(const std::string& folder) override;
  void OpenHelp() override;
  void Close(bool isSaved) override;

  void ConnectControls();
  void ConnectPicture();
  void WatchKeyboard();
  /// Runs a command at once, or after the job that has just begun.
  void Call(EditorCommand command);
  void Run(EditorCommand command);
  void RunWaiting();
  void WaitForJobs();
  bool CloseChildWindows();
  void RotateByField();
  void TakeResolution();
  void ShowPanels();

  bool IsIdle() const;
  void ShowActions();
  void ShowFields();
  void ShowTexts();
  void ShowLosses();
  void ShowSteps();
  void ShowPages();
  void ShowZoom();
  void Enable(QWidget& widget, bool enabled);

  void ShowJob();
  void ShowProgress();
  void HideJob();

  bool TakeShortcut(QObject& receiver, const QKeyEvent& event) const;
  bool TakeEnter(const QObject& receiver);
  void KeepLeastHeight();
  void ReadPanels();
  void WritePanels() const;

  const EditPictureOptions options_;
  const EditorWindows windows_;
  EditorActions actions_;
  EditorWidgets ui_;
  std::unique_ptr<PicturePane> pane_;
  std::unique_ptr<EditorModel> model_;

  /// Commands that were called while a job had just begun.
  std::vector<EditorCommand> waiting_;
  std::string jobTitle_;
  QTimer jobDelay_, jobClock_;
  bool isJobShown_ = false;
  /// Whether the window closes when the job has ended.
  bool closesAfterJob_ = false;
  bool isClosed_ = false;
  bool isShowing_ = false;
  /// The control that had the focus when it was disabled; it gets the focus back.
  QPointer<QWidget> focusBefore_;
  /// The document whose pages are listed.
  std::string listedFile_;
  FileFacts listedFacts_;
  int listedPages_ = 0;
  /// Destroyed first: a job ends before what it works on.
  EditorJobs jobs_;
};

}  // namespace rasterkit
