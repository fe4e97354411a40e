#include <utility>

#include <rasterkit/dialogs/editor/editor_state.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {

void EditorModel::State::GoTo(size_t place) {
  if (!HasPicture() || place > picture->steps.Steps().size()) return;
  const size_t now = picture->steps.Place();
  if (place == now) return;
  if (place == now + 1) return GoForward();
  if (place + 1 == now) return GoBack();
  const auto made = std::make_shared<EditorPicture>(*picture);
  while (made->steps.Place() > place) made->steps.Undo();
  while (made->steps.Place() < place) made->steps.Redo();
  made->shown.reset();
  const std::string title =
      place < now ? ResourceString(rsJobUndo) : made->stepNames[made->steps.Place() - 1];
  Start(
      title,
      [made](const PixelRun& run) {
        const std::span<const RecipeStep> steps = made->steps.Done();
        const bool isOnShown = made->base && WorkOnShownPixels(steps);
        Picture facts = *made->source.picture;
        Picture seen = isOnShown ? PictureOver(made->base, facts) : facts;
        for (const RecipeStep& step : steps) {
          ApplyRecipeStep(facts, step);
          if (isOnShown) ApplyRecipeStep(seen, step);
        }
        made->shown = steps.empty() && made->base ? made->base : PixelsToShow(seen, run);
        made->result = std::move(facts);
      },
      [this, made] { TakePicture(std::move(*made)); });
}

void EditorModel::GoTo(size_t place) {
  state_->Handle([&] { state_->GoTo(place); });
}

void EditorModel::Save() {
  state_->Handle([this] {
    if (state_->WouldWriteNew()) state_->Save({});
  });
}

const std::string& EditorModel::PagesFile() const {
  return state_->pagesFile;
}

}  // namespace rasterkit
