#include <algorithm>
#include <array>
#include <utility>

#include <rasterkit/dialogs/editor/editor_state.h>
#include <rasterkit/dialogs/editor/step_names.h>
#include <rasterkit/dialogs/editpdfbitmap/resolution_setting.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

std::string TitleOfOpening(const EditorSource& source) {
  return ResourceString(source.pdf ? rsJobDrawing : rsJobReading);
}

/// Reads the pixels of the source and shows them without steps.
EditorPicture Opened(EditorSource source, const PixelRun& run) {
  EditorPicture opened;
  DrawPage(source, run.cancel);
  opened.source = std::move(source);
  opened.result = opened.source.picture;
  opened.shown = PixelsToShow(*opened.result, run);
  if (!opened.source.IsInMemory()) opened.base = opened.shown;
  return opened;
}

/// Steps as far as they fit. Returns why the first of the others does not.
std::string TakeSteps(const JournalNote& note, EditorPicture& opened) {
  std::vector<RecipeStep> steps;
  Picture picture = *opened.source.picture;
  std::string error;
  for (const RecipeStep& step : note.recipe.steps) {
    try {
      ApplyRecipeStep(picture, step);
    } catch (const Error& fault) {
      error = fault.Reason();
      break;
    }
    steps.push_back(step);
    opened.stepNames.push_back(StepName(step, picture));
  }
  const size_t place = std::min(note.place, steps.size());
  opened.steps.Set(std::move(steps), place);
  return error;
}

/// Applies the steps to a picture that was opened.
void ApplySteps(EditorPicture& opened, const PixelRun& run) {
  if (opened.steps.Place() == 0) return;
  Picture picture = *opened.source.picture;
  for (const RecipeStep& step : opened.steps.Done()) ApplyRecipeStep(picture, step);
  opened.shown = PixelsToShow(picture, run);
  opened.result = std::move(picture);
}

/// Rectangles in pixels are those of another resolution.
std::vector<RecipeStep> Scaled(std::vector<RecipeStep> steps, double factor) {
  for (RecipeStep& step : steps) {
    auto* crop = std::get_if<RecipeCrop>(&step);
    if (crop != nullptr && crop->unit == LengthUnit::pixels) {
      crop->left *= factor;
      crop->top *= factor;
      crop->right *= factor;
      crop->bottom *= factor;
      crop->outside = Outside::clip;
    }
    // A size in pixels was chosen for any resolution; rectangles after it are in its pixels.
    const auto* size = std::get_if<RecipeResize>(&step);
    if (size != nullptr && size->unit == LengthUnit::pixels) break;
  }
  return steps;
}

}  // namespace

SourceRequest EditorModel::State::RequestFor(const std::string& file, int page) const {
  return {FullName(file), page, options.dpi, options.isolation};
}

std::optional<JournalNote> EditorModel::State::AskJournal(SourceRequest& request) {
  std::optional<JournalNote> note = journal.Find(request.file, request.page);
  if (!note) return std::nullopt;
  const FileFacts facts = FactsOfFile(request.file);
  const bool isSame = facts.bytes == note->bytes && facts.changed == note->changed;
  const std::string text =
      FormatText(ResourceString(isSame ? rsAskJournal : rsAskJournalChanged),
                 std::array{ExtractFileName(request.file), std::to_string(note->place)});
  switch (view.Ask(EditorQuestion::takeUpJournal, text)) {
    case EditorAnswer::yes:
      request.page = note->page;
      if (note->dpi > 0) request.dpi = note->dpi;
      return note;
    case EditorAnswer::no:
      journal.DropFound();
      break;
    case EditorAnswer::cancel:
      journal.LeaveFound();
  }
  return std::nullopt;
}

/// A picture that a job opens.
struct EditorModel::State::Opening {
  EditorPicture opened;
  /// Why steps of a journal were skipped, and how many.
  std::string error;
  size_t leftOut = 0;

  void Make(EditorSource source, const std::optional<JournalNote>& note, const PixelRun& run);
};

void EditorModel::State::Opening::Make(EditorSource source, const std::optional<JournalNote>& note,
                                       const PixelRun& run) {
  opened = Opened(std::move(source), run);
  if (!note) return;
  error = TakeSteps(*note, opened);
  leftOut = note->recipe.steps.size() - opened.steps.Steps().size();
  ApplySteps(opened, run);
}

void EditorModel::State::ReadPixels(const EditorSource& source,
                                    const std::optional<JournalNote>& note) {
  const auto opening = std::make_shared<Opening>();
  Start(
      TitleOfOpening(source),
      [opening, note, source](const PixelRun& run) { opening->Make(source, note, run); },
      [this, opening, note] { TakeOpened(*opening, note); });
}

void EditorModel::State::SetTarget(const EditorTarget& suggested) {
  const bool isSameFile = suggested.file == target.file && suggested.facts == target.facts;
  const bool wasAgreed = isSameFile && target.isAgreed;
  target = suggested;
  target.isAgreed = wasAgreed;
}

void EditorModel::State::TellHindrance() {
  const std::string reason = target.Hindrance();
  if (reason.empty()) return;
  view.Tell(FormatText(ResourceString(rsCannotSave), std::array{target.file, reason}));
}

/// Everything that belongs to the picture before is gone.
void EditorModel::State::TakeOpened(Opening& opening, const std::optional<JournalNote>& note) {
  journal.Forget();
  SetSource(opening.opened.source, note);
  TakePicture(std::move(opening.opened));
  if (opening.leftOut == 0) return;
  view.Tell(FormatText(ResourceString(rsJournalCut),
                       std::array{std::to_string(opening.leftOut), opening.error}));
}

/// What follows from the file and its journal alone.
void EditorModel::State::SetSource(const EditorSource& source,
                                   const std::optional<JournalNote>& note) {
  ++sources;
  SetTarget(SuggestTarget(source));
  saving = SuggestSaving(source, target);
  held.TakeOpened(++savings);
  pagesFile = source.request.file;
  if (!note) return;
  // How it is saved was chosen for this name.
  const bool isOther = !note->target.empty() && note->target != target.file;
  if (isOther && !WouldDestroySource(source, note->target)) {
    target = ChosenTarget(note->target, false);
  }
  if (IsSameSaving(saving, note->recipe.save)) return;
  saving = note->recipe.save;
  ++savings;
}

void EditorModel::State::Open(const std::string& file, int page) {
  SourceRequest request = RequestFor(file, page);
  EditorSource source = OpenEditorSource(request);
  const std::optional<JournalNote> note = AskJournal(request);
  if (note) source = OpenEditorSource(request);
  SetSource(source, note);
  TellHindrance();
  picture.emplace();
  picture->source = source;
  ReadPixels(source, note);
}

void EditorModel::State::OpenByJob(const SourceRequest& request) {
  SourceRequest asked = request;
  const std::optional<JournalNote> note = AskJournal(asked);
  const auto opening = std::make_shared<Opening>();
  Start(
      ResourceString(rsJobReading),
      [opening, note, asked](const PixelRun& run) {
        opening->Make(OpenEditorSource(asked), note, run);
      },
      [this, opening, note] {
        TakeOpened(*opening, note);
        TellHindrance();
      },
      [this] { journal.LeaveFound(); });
}

/// The steps are those of the page that is left.
void EditorModel::State::ShowPage(int page) {
  const bool isOther = picture && page != picture->source.request.page;
  if (!isOther || page < 1 || page > picture->source.pages) return;
  Leave([this, page] {
    SourceRequest request = RequestFor(pagesFile, page);
    request.dpi = picture->source.dpi.value_or(0);
    OpenByJob(request);
  });
}

void EditorModel::State::Redraw(double dpi) {
  if (!HasPicture() || !picture->source.dpi || *picture->source.dpi == dpi) return;
  EditorSource source = WithDpi(picture->source, dpi);
  const double factor = dpi / *picture->source.dpi;
  JournalNote note;
  note.recipe.steps = Scaled(picture->steps.Steps(), factor);
  note.place = picture->steps.Place();
  const auto made = std::make_shared<EditorPicture>();
  const std::string title = TitleOfOpening(source);
  Start(
      title,
      [made, note, source = std::move(source)](const PixelRun& run) {
        *made = Opened(source, run);
        const std::string error = TakeSteps(note, *made);
        if (made->steps.Place() < note.place) throw RangeError(error);
        ApplySteps(*made, run);
      },
      [this, made, dpi] {
        ++sources;
        TakePicture(std::move(*made));
        WriteResolution(static_cast<int>(dpi));
      });
}

}  // namespace rasterkit
