#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit {

/// Steps in their order and a place in them: those before the place are done, the others can be
/// done again. A value; states of the picture have numbers that are never used twice.
class StepList {
 public:
  const std::vector<RecipeStep>& Steps() const { return steps_; }
  size_t Place() const { return place_; }
  std::span<const RecipeStep> Done() const { return std::span(steps_).first(place_); }

  bool CanUndo() const { return place_ > 0; }
  bool CanRedo() const { return place_ < steps_.size(); }
  /// No more steps than a recipe holds.
  bool CanAdd() const;

  /// Forgets the steps after the place.
  void Add(const RecipeStep& step);
  /// These must be allowed.
  void Undo() { --place_; }
  void Redo() { ++place_; }
  /// Replaces everything.
  void Set(std::vector<RecipeStep> steps, size_t place);

  /// Number of the state at the place: equal for equal steps from the source on. 0 for the source.
  uint64_t State() const { return StateAt(place_); }
  uint64_t StateAt(size_t place) const { return place == 0 ? 0 : states_[place - 1]; }

  /// True if the steps up to the place lead back to the source: there are none, or turns and
  /// mirrors that undo each other.
  bool IsNothing() const;

 private:
  std::vector<RecipeStep> steps_;
  /// The number of the state after each step.
  std::vector<uint64_t> states_;
  size_t place_ = 0;
};

}  // namespace rasterkit
