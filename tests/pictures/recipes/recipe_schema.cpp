#include "tests/pictures/recipes/recipe_schema.h"

#include <cmath>

#include <rasterkit/pictures/recipes/color_text.h>
#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/pictures/recipes/step_fields.h>
#include <rasterkit/pictures/recipes/step_kinds.h>

#include <nlohmann/json.hpp>

namespace rasterkit::test {
namespace {

using Json = nlohmann::ordered_json;
using detail::NumberRange;
using detail::Word;

Json NumberOf(double value) {
  constexpr double kMostWhole = 1e15;
  if (value == std::floor(value) && std::abs(value) <= kMostWhole) {
    return static_cast<int64_t>(value);
  }
  return value;
}

Json RangeOf(const char* type, NumberRange range) {
  return {{"type", type}, {"minimum", NumberOf(range.least)}, {"maximum", NumberOf(range.most)}};
}

Json TextSchema() {
  return {{"type", "string"}, {"pattern", "^[^\\u0000]*$"}};
}

Json ColorSchema() {
  return {{"type", "string"}, {"pattern", "^#[0-9A-Fa-f]{6}$"}};
}

/// Lists the keys of a new struct.
class SchemaFields {
 public:
  void Must(const char* key, int, NumberRange range) { Require(key, RangeOf("integer", range)); }
  void Must(const char* key, double, NumberRange range) { Require(key, RangeOf("number", range)); }
  template <size_t count>
  void Must(const char* key, int, const int (&choices)[count]) {
    Require(key, {{"enum", choices}});
  }
  template <class Value, size_t count>
  void Must(const char* key, const Value&, const Word<Value> (&words)[count]) {
    Require(key, {{"enum", NamesOf(words)}});
  }
  void Must(const char* key, TColor) { Require(key, ColorSchema()); }
  void Must(const char* key, const std::string&) { Require(key, TextSchema()); }
  void Slot(const char* key, const std::string&) {
    Require(key, {{"type", "string"}, {"pattern", "^[A-Za-z0-9_-]{1,64}$"}});
  }

  void May(const char* key, bool usual) { Allow(key, {{"type", "boolean"}}, usual); }
  void May(const char* key, TColor usual) { Allow(key, ColorSchema(), detail::TextOfColor(usual)); }
  void May(const char* key, int usual, NumberRange range) {
    Allow(key, RangeOf("integer", range), usual);
  }
  void May(const char* key, double usual, NumberRange range) {
    Allow(key, RangeOf("number", range), NumberOf(usual));
  }
  void May(const char* key, const std::optional<int>&, NumberRange range) {
    Allow(key, RangeOf("integer", range));
  }
  void May(const char* key, const std::optional<double>&, NumberRange range) {
    Allow(key, RangeOf("number", range));
  }
  void May(const char* key, const std::optional<TColor>&) { Allow(key, ColorSchema()); }
  void May(const char* key, const std::optional<std::string>&) { Allow(key, TextSchema()); }
  void May(const char* key, const std::vector<std::string>&) {
    Allow(key, {{"type", "array"}, {"items", TextSchema()}});
  }
  void MayOrWord(const char* key, const std::optional<int>& usual, NumberRange range,
                 const char* word) {
    Json choices = Json::array({RangeOf("integer", range), {{"const", word}}});
    Allow(key, {{"oneOf", choices}}, usual.value());
  }
  template <size_t count>
  void May(const char* key, const std::optional<int>&, const int (&choices)[count]) {
    Allow(key, {{"enum", choices}});
  }
  template <class Value, size_t count>
  void May(const char* key, const Value& usual, const Word<Value> (&words)[count]) {
    Json name;
    for (const auto& word : words) {
      if (word.value == usual) name = word.name;
    }
    Allow(key, {{"enum", NamesOf(words)}}, name);
  }
  template <class Value, size_t count>
  void May(const char* key, const std::optional<Value>&, const Word<Value> (&words)[count]) {
    Allow(key, {{"enum", NamesOf(words)}});
  }
  template <class Struct>
  void May(const char* key, const std::optional<Struct>&) {
    Allow(key, Of<Struct>());
  }
  template <class Struct>
  void May(const char* key, const std::vector<Struct>&) {
    Allow(key, {{"type", "array"}, {"items", Of<Struct>()}});
  }
  void Check(const char*, bool, const char*) {}

  void Require(const char* key, Json schema) {
    properties_[key] = std::move(schema);
    required_.push_back(key);
  }
  void Allow(const char* key, Json schema, const Json& usual = {}) {
    if (!usual.is_null()) schema["default"] = usual;
    properties_[key] = std::move(schema);
  }

  Json Take() const {
    Json schema = {{"type", "object"}, {"additionalProperties", false}};
    if (!required_.empty()) schema["required"] = required_;
    schema["properties"] = properties_;
    return schema;
  }

  template <class Struct>
  Json With() {
    Struct fresh{};
    detail::Describe(*this, fresh);
    return Take();
  }
  template <class Struct>
  static Json Of() {
    return SchemaFields().With<Struct>();
  }

 private:
  template <class Value, size_t count>
  static Json NamesOf(const Word<Value> (&words)[count]) {
    Json names = Json::array();
    for (const auto& word : words) names.push_back(word.name);
    return names;
  }

  Json properties_ = Json::object(), required_ = Json::array();
};

}  // namespace

std::string RecipeSchema() {
  Json steps = Json::object(), choices = Json::array();
  detail::ForEachStepKind([&]<class Plain>(std::type_identity<Plain>) {
    if constexpr (detail::kIsStep<Plain>) {
      const detail::StepKind kind = detail::kStepKind<Plain>;
      SchemaFields fields;
      fields.Require("step", {{"const", kind.name}});
      fields.Require("revision", {{"const", kind.revision}});
      steps[kind.name] = fields.With<Plain>();
      choices.push_back({{"$ref", std::string("#/$defs/") + kind.name}});
    }
  });
  Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                 {"title", "Recipe of Rasterkit"},
                 {"description", "Steps and a way of saving that fit any picture; see recipes.md."},
                 {"type", "object"},
                 {"additionalProperties", false},
                 {"required", {"schema", "steps"}}};
  schema["properties"] = {
      {"schema", {{"const", 1}}},
      {"made_with", TextSchema()},
      {"as_stored", {{"type", "boolean"}, {"default", false}}},
      {"steps",
       {{"type", "array"}, {"maxItems", kMostRecipeSteps}, {"items", {{"oneOf", choices}}}}},
      {"save", SchemaFields::Of<RecipeSave>()}};
  schema["$defs"] = steps;
  return schema.dump(2) + "\n";
}

}  // namespace rasterkit::test
