#include <utility>

#include <rasterkit/dialogs/editor/editor_state.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {

void EditorModel::State::GoTo(size_t place) {
  if (!HasPicture() || place > picture->steps.Steps().size()) return;
  const size_t now = picture->steps.Place();
  if (place == now) return;
  if (place == now + 1) return GoForward();
  if (place + 1 == now) return GoBack();
  StepList steps = picture->steps;
  while (steps.Place() > place) steps.Undo();
  while (steps.Place() < place) steps.Redo();
  const std::string title = place < now ? ResourceString(rsJobUndo) : picture->stepNames[place - 1];
  ShowFromSource(std::move(steps), title);
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
