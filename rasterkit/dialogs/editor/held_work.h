#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include <rasterkit/runtime/files/file_facts.h>

namespace rasterkit {

/// What tells whether two states of the editor would be written as the same file.
struct EditedState {
  /// Rises with each picture that is opened, and each resolution.
  uint64_t source = 0;
  uint64_t steps = 0;
  /// Rises with each change of how it is saved.
  uint64_t saving = 0;
  friend bool operator==(const EditedState&, const EditedState&) = default;
};

/// Which states of the picture stand in files: in the source file, which a save may have replaced,
/// and in the target, which may be another one.
class HeldWork {
 public:
  /// A picture was opened, and would be saved like this if the user chose nothing.
  void TakeOpened(uint64_t saving);
  /// The target was written, with the steps up to the place.
  void TakeSaved(const EditedState& state);
  /// The file that was written is the source.
  void TakeSourceReplaced(const EditedState& state, size_t place, const FileFacts& facts);

  /// Whether the source file holds this state. `isNothing`: its steps change nothing.
  bool DoesSourceHold(const EditedState& state, bool isNothing) const;
  /// Whether the target holds it; nothing if this picture was not written yet.
  std::optional<bool> DoesTargetHold(const EditedState& state) const;

  /// A save replaced the source.
  bool IsSourceReplaced() const { return source_.has_value(); }
  /// Steps that the source file holds: those before this place, if they have this state.
  size_t PlaceInSource() const { return source_ ? source_->place : 0; }
  uint64_t StepsInSource() const { return source_ ? source_->state.steps : 0; }
  /// The source file as the save left it; `opened` if there was none.
  const FileFacts& SourceFacts(const FileFacts& opened) const {
    return source_ ? source_->facts : opened;
  }

 private:
  struct Replaced {
    EditedState state;
    size_t place = 0;
    FileFacts facts;
  };
  /// The number of the saving that was suggested.
  uint64_t suggested_ = 0;
  std::optional<Replaced> source_;
  std::optional<EditedState> target_;
};

}  // namespace rasterkit
