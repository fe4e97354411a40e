#include <set>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/pictures/recipes/recipe_json.h>
#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/pictures/recipes/step_kinds.h>
#include <rasterkit/pictures/recipes/step_reader.h>
#include <rasterkit/pictures/recipes/step_writer.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using detail::StepReader;
using detail::StepWriter;
using nlohmann::json;

constexpr int kSchema = 1;

[[noreturn]] void Refuse(const std::string& path, const std::string& reason) {
  throw FormatError(path + ": " + reason);
}

void TakeRevision(StepReader& reader, const detail::StepKind& kind, bool takesAny) {
  constexpr detail::NumberRange kRevisions{1, 1e6};
  int revision = kind.revision;
  reader.Must("revision", revision, kRevisions);
  if (revision == kind.revision || takesAny) return;
  Refuse(reader.PathOf("revision"),
         fmt::format("the step \"{}\" has revision {} here, not {}: its result may differ",
                     kind.name, kind.revision, revision));
}

template <class Plain>
RecipeStep StepOf(const json& object, const std::string& path, bool takesAny) {
  StepReader reader(object, path, {"step"});
  TakeRevision(reader, detail::kStepKind<Plain>, takesAny);
  Plain plain{};
  Describe(reader, plain);
  reader.Finish();
  return detail::StepOfKind(std::move(plain));
}

RecipeStep ReadStep(const json& object, const std::string& path, bool takesAny) {
  StepReader head(object, path);
  const json* const name = head.Find("step");
  if (name == nullptr) Refuse(path, "the key step is missing");
  std::optional<RecipeStep> step;
  std::string names;
  detail::ForEachStepKind([&]<class Plain>(std::type_identity<Plain>) {
    if constexpr (detail::kIsStep<Plain>) {
      const char* const own = detail::kStepKind<Plain>.name;
      names += (names.empty() ? "" : ", ") + std::string(own);
      if (*name == own) step = StepOf<Plain>(object, path, takesAny);
    }
  });
  if (!step) {
    Refuse(path + "/step", detail::ShownValue(*name) + " is none of " + names);
  }
  return std::move(*step);
}

std::vector<RecipeStep> ReadSteps(const json& list, bool takesAny) {
  if (!list.is_array()) Refuse("/steps", detail::ShownValue(list) + " is no list");
  if (list.size() > kMostRecipeSteps) {
    Refuse("/steps", fmt::format("{} steps are more than {}", list.size(), kMostRecipeSteps));
  }
  std::vector<RecipeStep> steps;
  for (size_t i = 0; i < list.size(); ++i) {
    steps.push_back(ReadStep(list[i], fmt::format("/steps/{}", i), takesAny));
  }
  return steps;
}

void RequireSchema(const json& schema) {
  if (schema == kSchema) return;
  Refuse("/schema", fmt::format("{} is not {}, the version of recipes that is known here",
                                detail::ShownValue(schema), kSchema));
}

/// Calls `function` with the struct of the step's kind.
template <class Function>
auto VisitPlain(const RecipeStep& step, const Function& function) {
  return std::visit(
      [&]<class Plain>(const Plain& plain) {
        if constexpr (std::is_same_v<Plain, ChangeStep>) {
          return std::visit(function, plain.change);
        } else {
          return function(plain);
        }
      },
      step);
}

StepWriter::Json WrittenStep(const RecipeStep& step, const std::string& path) {
  return VisitPlain(step, [&]<class Plain>(const Plain& plain) -> StepWriter::Json {
    if constexpr (detail::kIsStep<Plain>) {
      constexpr detail::StepKind kKind = detail::kStepKind<Plain>;
      return StepWriter::ObjectOf(plain, path,
                                  {{"step", kKind.name}, {"revision", kKind.revision}});
    } else {
      throw RangeError(path + ": a palette of its own is named by a slot");
    }
  });
}

}  // namespace

Recipe ReadRecipe(const std::string& text, const RecipeReading& reading) {
  if (text.size() > kMostRecipeBytes) {
    throw FormatError(
        fmt::format("a recipe has at most {} bytes, not {}", kMostRecipeBytes, text.size()));
  }
  const json root = detail::ParseRecipeJson(text);
  StepReader reader(root, "");
  // Another version may have other keys.
  if (const json* schema = reader.Required("schema")) RequireSchema(*schema);
  Recipe recipe;
  std::optional<std::string> madeWith;
  reader.May("made_with", madeWith);
  recipe.madeWith = madeWith.value_or("");
  reader.May("as_stored", recipe.isAsStored);
  const json* const steps = reader.Required("steps");
  std::optional<RecipeSave> save;
  reader.May("save", save);
  reader.Finish();
  recipe.save = save.value_or(RecipeSave());
  recipe.steps = ReadSteps(*steps, reading.anyRevision);
  return recipe;
}

const char* RecipeStepName(const RecipeStep& step) {
  return VisitPlain(step, []<class Plain>(const Plain&) {
    if constexpr (detail::kIsStep<Plain>) {
      return detail::kStepKind<Plain>.name;
    } else {
      return detail::kStepKind<RecipePalette>.name;
    }
  });
}

std::string WriteRecipe(const Recipe& recipe) {
  if (recipe.steps.size() > kMostRecipeSteps) {
    throw RangeError(
        fmt::format("/steps: {} steps are more than {}", recipe.steps.size(), kMostRecipeSteps));
  }
  StepWriter::Json root;
  root["schema"] = kSchema;
  if (!detail::IsRecipeText(recipe.madeWith)) {
    throw RangeError(std::string("/made_with: ") + detail::kNoRecipeText);
  }
  root["made_with"] = recipe.madeWith;
  if (recipe.isAsStored) root["as_stored"] = true;
  root["steps"] = StepWriter::Json::array();
  for (size_t i = 0; i < recipe.steps.size(); ++i) {
    root["steps"].push_back(WrittenStep(recipe.steps[i], fmt::format("/steps/{}", i)));
  }
  root["save"] = StepWriter::ObjectOf(recipe.save, "/save");
  const std::string text = root.dump(2) + "\n";
  if (text.size() > kMostRecipeBytes) {
    throw RangeError(
        fmt::format("a recipe has at most {} bytes, not {}", kMostRecipeBytes, text.size()));
  }
  return text;
}

}  // namespace rasterkit
