#include <rasterkit/dialogs/editor/held_work.h>

namespace rasterkit {

void HeldWork::TakeOpened(uint64_t saving) {
  *this = {};
  suggested_ = saving;
}

void HeldWork::TakeSaved(const EditedState& state) {
  target_ = state;
}

void HeldWork::TakeSourceReplaced(const EditedState& state, size_t place, const FileFacts& facts) {
  source_ = {state, place, facts};
}

bool HeldWork::DoesSourceHold(const EditedState& state, bool isNothing) const {
  if (source_) return source_->state == state;
  // A choice that was written somewhere is no work of its own.
  const bool isSavingKnown =
      state.saving == suggested_ || (target_ && state.saving == target_->saving);
  return isNothing && isSavingKnown;
}

std::optional<bool> HeldWork::DoesTargetHold(const EditedState& state) const {
  if (!target_) return std::nullopt;
  return *target_ == state;
}

}  // namespace rasterkit
