#pragma once

#include <type_traits>
#include <utility>
#include <variant>

#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit::detail {

/// Name of a step in recipes, and the revision that rises when its result changes.
struct StepKind {
  const char* name;
  int revision;
};

/// False for structs that stand in no recipe as they are.
template <class Plain>
inline constexpr bool kIsStep = true;
/// A palette is named by a slot: see RecipePalette.
template <>
inline constexpr bool kIsStep<UsePalette> = false;

/// A kind without an entry here does not compile.
template <class Plain>
inline constexpr StepKind kStepKind = [] {
  static_assert(sizeof(Plain) == 0, "a step of recipes needs a name and a revision");
  return StepKind{};
}();

template <>
inline constexpr StepKind kStepKind<TurnStep>{"turn", 1};
template <>
inline constexpr StepKind kStepKind<MirrorStep>{"mirror", 1};
template <>
inline constexpr StepKind kStepKind<RotateStep>{"rotate", 1};
template <>
inline constexpr StepKind kStepKind<NorthUpStep>{"north-up", 1};
template <>
inline constexpr StepKind kStepKind<RecipeCrop>{"crop", 1};
template <>
inline constexpr StepKind kStepKind<RecipeResize>{"resize", 1};
template <>
inline constexpr StepKind kStepKind<MakeGray>{"gray", 1};
template <>
inline constexpr StepKind kStepKind<MakeMono>{"mono", 1};
template <>
inline constexpr StepKind kStepKind<AdjustColors>{"adjust", 1};
template <>
inline constexpr StepKind kStepKind<WhitenLight>{"whiten", 1};
template <>
inline constexpr StepKind kStepKind<RecolorByGray>{"recolor", 1};
template <>
inline constexpr StepKind kStepKind<ReplaceKeyColor>{"key-color", 1};
template <>
inline constexpr StepKind kStepKind<WhiteForPdf>{"pdf-white", 1};
template <>
inline constexpr StepKind kStepKind<PaintTransparency>{"opaque", 1};
template <>
inline constexpr StepKind kStepKind<SwapOpacity>{"swap-alpha", 1};
template <>
inline constexpr StepKind kStepKind<SetPaletteEntries>{"palette-entries", 1};
template <>
inline constexpr StepKind kStepKind<SetBits>{"bits", 1};
template <>
inline constexpr StepKind kStepKind<RecipeCombine>{"combine", 1};
template <>
inline constexpr StepKind kStepKind<RecipePalette>{"palette", 1};
template <>
inline constexpr StepKind kStepKind<PlaceStep>{"place", 1};
template <>
inline constexpr StepKind kStepKind<EditStep>{"edit", 1};
template <>
inline constexpr StepKind kStepKind<RecipeCopy>{"copy-metadata", 1};
template <>
inline constexpr StepKind kStepKind<StretchStep>{"stretch", 1};

template <class... Plain, class Function>
void ForEachOf(std::type_identity<std::variant<Plain...>>, const Function& function) {
  (function(std::type_identity<Plain>()), ...);
}

/// Calls `function(std::type_identity<Plain>())` for the struct of each kind of step. The changes
/// of color are steps of their own.
template <class Function>
void ForEachStepKind(const Function& function) {
  ForEachOf(std::type_identity<RecipeStep>(), [&]<class Plain>(std::type_identity<Plain> plain) {
    if constexpr (std::is_same_v<Plain, ChangeStep>) {
      ForEachOf(std::type_identity<ColorChange>(), function);
    } else {
      function(plain);
    }
  });
}

/// The step of a recipe for the struct of a kind.
template <class Plain>
RecipeStep StepOfKind(Plain plain) {
  if constexpr (std::is_constructible_v<ColorChange, Plain>) {
    return ChangeStep{std::move(plain)};
  } else {
    return plain;
  }
}

}  // namespace rasterkit::detail
