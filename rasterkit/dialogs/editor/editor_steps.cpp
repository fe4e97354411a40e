#include <array>
#include <utility>

#include <fmt/core.h>

#include <rasterkit/dialogs/editor/editor_state.h>
#include <rasterkit/dialogs/editor/mebibyte_text.h>
#include <rasterkit/dialogs/editor/step_names.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/pictures/recipes/recipe_output.h>
#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

std::string WithMemory(const std::string& title, uint64_t bytes) {
  return FormatText(ResourceString(rsJobMemory), std::array{title, MebibyteText(bytes)});
}

/// Refuses a result that needs too much memory, with need and limit.
void RequireResult(const Picture& picture) {
  RequirePicture(static_cast<uint64_t>(picture.Width()), static_cast<uint64_t>(picture.Height()),
                 BytesToShow(picture),
                 fmt::format("a picture of {} x {} pixels", picture.Width(), picture.Height()));
}

/// True if the picture is the same with the step.
bool ChangesNothing(const RecipeStep& step, const Picture& before, const Picture& after) {
  const bool isSize =
      std::holds_alternative<RecipeCrop>(step) || std::holds_alternative<RecipeResize>(step);
  return isSize && before.Width() == after.Width() && before.Height() == after.Height() &&
         before.GetMetadata().resolution == after.GetMetadata().resolution;
}

}  // namespace

SavingPlan PlanOfSaving(const Picture& result, const std::string& file, const RecipeSave& saving) {
  SavingPlan plan;
  try {
    const RecipeOutput output(result, Recipe{{}, {}, saving});
    plan.report = output.Plan(file, SaveOptionsOf(saving));
  } catch (const Error& error) {
    plan.error = error.Reason();
  }
  return plan;
}

void EditorModel::State::AskForStep(const Action& ask) {
  Handle([&] {
    if (HasPicture()) ask();
  });
}

void EditorModel::State::AddStep(const RecipeStep& step) {
  if (!HasPicture()) return;
  if (!picture->steps.CanAdd()) {
    throw RangeError(fmt::format("a recipe holds at most {} steps", kMostRecipeSteps));
  }
  Picture next = *picture->result;
  ApplyRecipeStep(next, step);
  if (ChangesNothing(step, *picture->result, next)) return;
  StepList steps = picture->steps;
  std::vector<std::string> names = picture->stepNames;
  names.resize(steps.Place());
  names.push_back(StepName(step, next));
  steps.Add(step);
  ShowNext(std::move(steps), std::move(names), std::move(next));
}

void EditorModel::State::GoForward() {
  if (!HasPicture() || !picture->steps.CanRedo()) return;
  StepList steps = picture->steps;
  Picture next = *picture->result;
  ApplyRecipeStep(next, steps.Steps()[steps.Place()]);
  steps.Redo();
  ShowNext(std::move(steps), picture->stepNames, std::move(next));
}

/// Goes on from the pixels that are shown, by one step.
void EditorModel::State::ShowNext(StepList steps, std::vector<std::string> names, Picture next) {
  RequireResult(next);
  const auto made = std::make_shared<EditorPicture>(*picture);
  const ShownPixels from = picture->shown;
  const bool isOnShown = AreSeenAsStored(*picture->source.picture);
  made->steps = std::move(steps);
  made->stepNames = std::move(names);
  const std::string title = WithMemory(made->stepNames[made->steps.Place() - 1], BytesToShow(next));
  const RecipeStep step = made->steps.Done().back();
  // Nothing of the picture before is held twice.
  made->shown.reset();
  Start(
      title,
      [made, from, step, next = std::move(next), isOnShown](const PixelRun& run) {
        Picture picture = next;
        if (isOnShown) {
          picture = PictureOver(*from, *made->result);
          ApplyRecipeStep(picture, step);
        }
        made->shown = PixelsToShow(picture, run);
        made->result = next;
      },
      [this, made] { TakePicture(std::move(*made)); });
}

void EditorModel::State::GoBack() {
  if (!HasPicture() || !picture->steps.CanUndo()) return;
  StepList steps = picture->steps;
  steps.Undo();
  ShowFromSource(std::move(steps), ResourceString(rsJobUndo));
}

void EditorModel::State::ShowFromSource(StepList list, const std::string& title) {
  const auto made = std::make_shared<EditorPicture>(*picture);
  made->steps = std::move(list);
  made->shown.reset();
  Start(
      title,
      [made](const PixelRun& run) {
        const std::span<const RecipeStep> steps = made->steps.Done();
        Picture facts = *made->source.picture;
        std::optional<Picture> seen;
        if (made->base && AreSeenAsStored(facts)) seen = PictureOver(*made->base, facts);
        for (const RecipeStep& step : steps) {
          ApplyRecipeStep(facts, step);
          if (seen) ApplyRecipeStep(*seen, step);
        }
        made->shown =
            steps.empty() && made->base ? made->base : PixelsToShow(seen.value_or(facts), run);
        if (run.cancel.stop_requested()) throw CanceledError("the step was canceled");
        made->result = std::move(facts);
      },
      [this, made] { TakePicture(std::move(*made)); });
}

void EditorModel::State::TakePicture(EditorPicture next) {
  picture = std::move(next);
  view.ShowPixels(picture->shown.get());
  NoteWork();
  PlanSaving();
}

void EditorModel::State::PlanSaving() {
  plan.reset();
  if (!HasPicture()) return;
  const auto made = std::make_shared<SavingPlan>();
  Start(
      ResourceString(rsJobPlanning),
      [made, result = *picture->result, file = target.file, saving = saving](const PixelRun&) {
        *made = PlanOfSaving(result, file, saving);
      },
      [this, made] { plan = std::move(*made); });
}

}  // namespace rasterkit
