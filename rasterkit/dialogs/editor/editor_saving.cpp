#include <array>
#include <utility>

#include <rasterkit/dialogs/editor/editor_state.h>
#include <rasterkit/pictures/pending_save.h>
#include <rasterkit/pictures/recipes/recipe_output.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

std::string TextFor(std::string_view text, const std::string& file) {
  return FormatText(ResourceString(text), std::array{ExtractFileName(file)});
}

/// What came of a save.
struct SaveOutcome {
  Report report;
  /// A file that was not there when the user was asked is there, or one beside it.
  std::string inTheWay;
  /// The file is written, and a power failure could undo it.
  std::string doubt;
};

/// The one way in which the editor writes: the same as that of a recipe without a window.
void WriteFile(const Picture& source, const Recipe& recipe, const std::string& file,
               bool mayReplace, const PixelRun& how, SaveOutcome& outcome) {
  const RecipeOutput output(source, recipe);
  SaveOptions options = SaveOptionsOf(recipe.save);
  options.mayReplace = mayReplace;
  Run run;
  run.cancel = how.cancel;
  run.progress = how.progress;
  std::optional<PendingSave> save;
  try {
    save.emplace(output.Prepare(file, options, run));
    save->Commit();
    outcome.report = save->Report();
  } catch (const FileExistsError& error) {
    outcome.inTheWay = error.File();
  } catch (const UnsyncedError& error) {
    outcome.doubt = error.what();
    if (save) outcome.report = save->Report();
  }
}

}  // namespace

bool IsSameSaving(const RecipeSave& a, const RecipeSave& b) {
  return a.type == b.type && a.bits == b.bits && a.compression == b.compression &&
         a.quality == b.quality && a.chromaX == b.chromaX && a.chromaY == b.chromaY &&
         a.pngLevel == b.pngLevel && a.lossless == b.lossless && a.background == b.background &&
         a.metadata == b.metadata;
}

EditedState EditorModel::State::Now() const {
  return {sources, picture ? picture->steps.State() : 0, savings};
}

bool EditorModel::State::WouldWriteNew() const {
  if (!HasPicture()) return false;
  if (const std::optional<bool> isHeld = held.DoesTargetHold(Now())) return !*isHeld;
  const bool isSource = target.file == picture->source.request.file;
  return !isSource || !held.DoesSourceHold(Now(), picture->steps.IsNothing());
}

bool EditorModel::State::HasUnsavedWork() const {
  if (!HasPicture()) return false;
  return !held.DoesTargetHold(Now()).value_or(false) &&
         !held.DoesSourceHold(Now(), picture->steps.IsNothing());
}

Recipe EditorModel::State::ToRecipe() const {
  Recipe recipe;
  recipe.madeWith = "rasterkit " RASTERKIT_VERSION;
  if (picture) {
    const std::span<const RecipeStep> done = picture->steps.Done();
    recipe.steps.assign(done.begin(), done.end());
  }
  recipe.save = saving;
  return recipe;
}

void EditorModel::State::Leave(const Action& next) {
  if (!HasUnsavedWork()) return next();
  switch (
      view.Ask(EditorQuestion::loseWork, TextFor(rsAskLoseWork, picture->source.request.file))) {
    case EditorAnswer::yes:
      return Save(next);
    case EditorAnswer::no:
      return next();
    case EditorAnswer::cancel:
      return;
  }
}

void EditorModel::State::Save(const Action& next, const Action& failed) {
  if (TellRefusal()) {
    if (failed) return failed();
    if (options.showsSave) SaveAs(next);
    return;
  }
  const FileFacts current = FactsOfFile(target.file);
  if (const std::optional<EditorQuestion> question = target.QuestionFor(current)) {
    const bool isChanged = *question == EditorQuestion::fileChanged;
    const std::string text = TextFor(isChanged ? rsAskChanged : rsAskReplace, target.file);
    if (view.Ask(*question, text) != EditorAnswer::yes) {
      if (failed) failed();
      return;
    }
    target.isAgreed = true;
    target.facts = current;
  }
  RunSave(next, failed);
}

bool EditorModel::State::TellRefusal() {
  if (WouldDestroySource(picture->source, target.file)) {
    view.Tell(TextFor(rsNeverOver, target.file));
    return true;
  }
  TellHindrance();
  return !target.Hindrance().empty();
}

/// Saving reads the source again, so that the pixels of a large one are not kept beside those that
/// are shown. Undo reads them when it needs them.
void EditorModel::State::ReleaseBase() {
  constexpr uint64_t kLarge = uint64_t{64} << 20;
  const bool isApart = picture->base && picture->base != picture->shown;
  if (isApart && BytesOf(*picture->base) > kLarge) picture->base.reset();
}

void EditorModel::State::RunSave(const Action& next, const Action& failed) {
  ReleaseBase();
  const auto outcome = std::make_shared<SaveOutcome>();
  const Recipe recipe = ToRecipe();
  const bool mayReplace = target.isAgreed;
  Start(
      ResourceString(rsJobSaving),
      [outcome, recipe, mayReplace, source = *picture->source.picture, file = target.file](
          const PixelRun& run) { WriteFile(source, recipe, file, mayReplace, run, *outcome); },
      [this, outcome, recipe, next, failed] {
        if (!outcome->inTheWay.empty()) {
          const std::string text = TextFor(rsAskReplace, outcome->inTheWay);
          if (view.Ask(EditorQuestion::replaceFile, text) == EditorAnswer::yes) {
            target.isAgreed = true;
            target.facts = FactsOfFile(target.file);
            return RunSave(next, failed);
          }
          if (failed) failed();
          return;
        }
        TakeSaved(outcome->report, recipe);
        if (!outcome->doubt.empty()) view.Tell(outcome->doubt);
        if (next) next();
      },
      failed, true);
}

void EditorModel::State::TakeSaved(const Report& report, const Recipe& recipe) {
  const EditorSource& source = picture->source;
  target.facts = FactsOfFile(target.file);
  target.isAgreed = true;
  held.TakeSaved(Now());
  if (target.facts.IsSameFile(FactsOfFile(source.request.file))) {
    held.TakeSourceReplaced(Now(), picture->steps.Place(), target.facts);
  }
  const bool keepsPages = source.type == PictureType::tiff && report.type == PictureType::tiff;
  if (source.pages > 1 && keepsPages) pagesFile = target.file;
  written = {target.file, recipe, source.request.page, source.dpi.value_or(0), source.type};
  NoteWork();
  if (options.onSaved) options.onSaved(target.file, recipe, report);
}

void EditorModel::State::SaveAs(const Action& next) {
  const SavingStart start{target.file, saving, options.usesDesktopDialogs};
  const std::optional<SavingChoice> choice = view.AskSaving(*picture->result, start);
  if (!choice) return;
  if (WouldDestroySource(picture->source, FullName(choice->file))) {
    view.Tell(TextFor(rsNeverOver, choice->file));
    return;
  }
  const EditorTarget targetBefore = target;
  const RecipeSave savingBefore = saving;
  const uint64_t numberBefore = savings;
  target = ChosenTarget(choice->file, choice->mayReplace);
  if (!IsSameSaving(saving, choice->save)) {
    saving = choice->save;
    ++savings;
  }
  const auto restore = [this, targetBefore, savingBefore, numberBefore] {
    target = targetBefore;
    saving = savingBefore;
    savings = numberBefore;
  };
  Save(
      [this, next] {
        if (next) return next();
        PlanSaving();
      },
      restore);
}

void EditorModel::State::AskSettings() {
  const SavingChoice start{target.file, saving, target.isAgreed};
  const std::optional<RecipeSave> answer = view.AskSettings(*picture->result, start);
  if (!answer || IsSameSaving(saving, *answer)) return;
  saving = *answer;
  ++savings;
  NoteWork();
  PlanSaving();
}

void EditorModel::State::NoteWork() {
  // The next start reads the source file, with the steps that it holds.
  const size_t first = held.PlaceInSource();
  const StepList& steps = picture->steps;
  const bool isReadable = steps.Place() >= first && steps.Steps().size() > first;
  // Else steps that were saved have been undone and replaced by others.
  const bool isKept = isReadable && held.StepsInSource() == steps.StateAt(first);
  if (!HasUnsavedWork() || !isKept) return journal.Forget();
  const FileFacts& facts = held.SourceFacts(picture->source.facts);
  JournalNote note{picture->source.request.file,
                   facts.bytes,
                   facts.changed,
                   picture->source.request.page,
                   picture->source.dpi.value_or(0),
                   steps.Place() - first,
                   target.file,
                   {}};
  note.recipe = ToRecipe();
  note.recipe.steps.assign(steps.Steps().begin() + static_cast<ptrdiff_t>(first),
                           steps.Steps().end());
  journal.Keep(note);
}

void EditorModel::State::Close() {
  journal.Forget();
  isClosed = true;
  view.Close(written.has_value());
}

}  // namespace rasterkit
