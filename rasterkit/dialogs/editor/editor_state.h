#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/dialogs/editor/edit_journal.h>
#include <rasterkit/dialogs/editor/editor_model.h>
#include <rasterkit/dialogs/editor/editor_source.h>
#include <rasterkit/dialogs/editor/editor_target.h>
#include <rasterkit/dialogs/editor/held_work.h>
#include <rasterkit/dialogs/editor/shown_pixels.h>
#include <rasterkit/dialogs/editor/step_list.h>

namespace rasterkit {

/// What is shown and how it would be saved: made by a job, taken over as a whole.
struct EditorPicture {
  EditorSource source;
  /// Of the source; null if the source is in memory itself.
  ShownPixels base;
  StepList steps;
  std::vector<std::string> stepNames;
  /// The source with the steps up to the place.
  std::optional<Picture> result;
  /// Its pixels; those of the source themselves if there are no steps.
  ShownPixels shown;
};

/// What saving the picture would do.
struct SavingPlan {
  Report report;
  /// Why nothing can be planned; empty if it could.
  std::string error;
};

struct EditorModel::State : std::enable_shared_from_this<EditorModel::State> {
  State(EditorView& theView, const EditPictureOptions& theOptions);

  using Action = std::function<void()>;
  using Work = std::function<void(const PixelRun& run)>;

  EditorView& view;
  const EditPictureOptions options;
  EditJournal journal;

  std::optional<EditorPicture> picture;
  EditorTarget target;
  RecipeSave saving;
  /// Nothing while it is made.
  std::optional<SavingPlan> plan;
  /// The file whose pages are shown: the one that was opened, or that was written since.
  std::string pagesFile;
  uint64_t sources = 0, savings = 0;
  HeldWork held;
  std::optional<EditedPicture> written;

  bool isHandling = false, isWorking = false, isClosed = false;

  // Events and jobs: editor_events.cpp.

  /// Runs an event; tells its errors.
  void Handle(const Action& action);
  /// The same while a job may run.
  void Guard(const Action& action);
  /// Starts a job; `done` follows on success, `failed` after an error was told or a cancellation.
  void Start(const std::string& title, Work work, Action done, Action failed = {},
             bool isSave = false);

  // Opening: editor_opening.cpp.

  SourceRequest RequestFor(const std::string& file, int page) const;
  /// Asks whether steps of a crash are taken up; the request is then that of the journal.
  std::optional<JournalNote> AskJournal(SourceRequest& request);
  struct Opening;
  /// Reads headers; a job reads the pixels.
  void Open(const std::string& file, int page);
  void ReadPixels(const EditorSource& source, const std::optional<JournalNote>& note);
  /// Headers and pixels by a job; the picture before stays until then.
  void OpenByJob(const SourceRequest& request);
  void TakeOpened(Opening& opening, const std::optional<JournalNote>& note);
  void SetSource(const EditorSource& source, const std::optional<JournalNote>& note);
  void SetTarget(const EditorTarget& suggested);
  void TellHindrance();
  void Redraw(double dpi);
  void ShowPage(int page);

  // Steps: editor_steps.cpp.

  bool HasPicture() const { return picture && picture->shown; }
  /// Opens a window in which the user chooses a step.
  void AskForStep(const Action& ask);
  void AddStep(const RecipeStep& step);
  void GoBack();
  void GoForward();
  /// Another place in the list, over any number of steps: editor_places.cpp.
  void GoTo(size_t place);
  /// Computes the pixels from the source on, by all steps up to the place.
  void ShowFromSource(StepList list, const std::string& title);
  /// Computes the pixels for the list, and takes it over.
  void Show(StepList steps, std::vector<std::string> names, const std::string& title);
  void ShowNext(StepList steps, std::vector<std::string> names, Picture next);
  void TakePicture(EditorPicture next);
  void PlanSaving();

  // Saving: editor_saving.cpp.

  EditedState Now() const;
  bool WouldWriteNew() const;
  bool HasUnsavedWork() const;
  Recipe ToRecipe() const;
  /// Runs `next` if no work is lost by it, or the user agrees, or after saving.
  void Leave(const Action& next);
  /// Asks what must be asked, and writes. `failed` runs if nothing was written.
  void Save(const Action& next, const Action& failed = {});
  void ReleaseBase();
  /// Tells why the target cannot be written; false if it can.
  bool TellRefusal();
  void RunSave(const Action& next, const Action& failed);
  void TakeSaved(const Report& report, const Recipe& recipe);
  void SaveAs(const Action& next);
  void AskSettings();
  void NoteWork();
  void Close();
};

/// The plan of a save; never throws.
SavingPlan PlanOfSaving(const Picture& result, const std::string& file, const RecipeSave& saving);

/// Options of a save that the recipe states.
bool IsSameSaving(const RecipeSave& a, const RecipeSave& b);

}  // namespace rasterkit
