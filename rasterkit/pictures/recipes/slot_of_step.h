#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <variant>

#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit::detail {

inline constexpr const char* kSlotRule =
    "a name has 1 to 64 letters (a to z), digits, hyphens and underscores";

inline bool IsSlotName(std::string_view name) {
  constexpr size_t kMost = 64;
  const auto fits = [](char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
  };
  return !name.empty() && name.size() <= kMost && std::all_of(name.begin(), name.end(), fits);
}

/// The slot that a step names; empty for steps without one.
inline std::string SlotOf(const RecipeStep& step) {
  return std::visit(
      [](const auto& plain) {
        if constexpr (requires { plain.slot; }) {
          return plain.slot;
        } else {
          return std::string();
        }
      },
      step);
}

}  // namespace rasterkit::detail
