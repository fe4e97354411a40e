#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <rasterkit/dialogs/bitmapframe/rd_rect.h>

namespace rasterkit {

/// The undo history of the cut: rectangles in bitmap pixels, or nothing for "no cut". Keeps the
/// last 256, and what was undone until the next change.
class CutHistory {
 public:
  using Cut = std::optional<RDRect>;

  /// Stores `before` if it differs from `after` by more than rounding.
  void Note(const Cut& before, const Cut& after) {
    const bool isSame = before && after ? AlmostEqual(*before, *after, kRounding)
                                        : before.has_value() == after.has_value();
    if (isSame) return;
    undone_.clear();
    if (cuts_.size() == kMost) cuts_.erase(cuts_.begin());
    cuts_.push_back(before);
  }
  /// Returns and removes the last entry; nothing if there is none.
  std::optional<Cut> Take() {
    if (cuts_.empty()) return std::nullopt;
    const Cut last = cuts_.back();
    cuts_.pop_back();
    return last;
  }
  bool IsEmpty() const { return cuts_.empty(); }
  /// Keeps the cut that an undo replaced.
  void NoteUndone(const Cut& cut) { undone_.push_back(cut); }
  /// Returns the cut that was undone last, and keeps `current` for undo; nothing if there is none.
  std::optional<Cut> TakeUndone(const Cut& current) {
    if (undone_.empty()) return std::nullopt;
    const Cut next = undone_.back();
    undone_.pop_back();
    cuts_.push_back(current);
    return next;
  }
  bool HasUndone() const { return !undone_.empty(); }
  void Forget() {
    cuts_.clear();
    undone_.clear();
  }

 private:
  static constexpr size_t kMost = 256;
  static constexpr double kRounding = 1e-6;

  std::vector<Cut> cuts_, undone_;
};

}  // namespace rasterkit
